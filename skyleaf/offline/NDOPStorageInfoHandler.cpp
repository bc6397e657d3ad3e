#include "offline/NDOPStorageInfoHandler.h"

NDOPStorageInfoHandler::NDOPStorageInfoHandler(QObject* parent, NxWebViewAsynJSObject* scriptObject,
                                               QObject* host)
    : NDocsOfflinePageJSApiHandlerBase(parent, scriptObject)
    , m_host(host)
{
}

void NDOPStorageInfoHandler::create(NxWebViewJSContext& context)
{
    replyNotServed(context);
}

void NDOPStorageInfoHandler::select(NxWebViewJSContext& context)
{
    replyNotServed(context);
}

void NDOPStorageInfoHandler::update(NxWebViewJSContext& context)
{
    replyNotServed(context);
}

void NDOPStorageInfoHandler::remove(NxWebViewJSContext& context)
{
    replyNotServed(context);
}

void NDOPStorageInfoHandler::upload(NxWebViewJSContext& context)
{
    replyNotServed(context);
}

void NDOPStorageInfoHandler::download(NxWebViewJSContext& context)
{
    replyNotServed(context);
}
