#include "offline/NDOPStorageFileHandler.h"

void NDOPStorageFileHandler::create(NxWebViewJSContext& context)
{
    replyNotServed(context);
}

void NDOPStorageFileHandler::read(NxWebViewJSContext& context)
{
    replyNotServed(context);
}

void NDOPStorageFileHandler::update(NxWebViewJSContext& context)
{
    replyNotServed(context);
}

void NDOPStorageFileHandler::remove(NxWebViewJSContext& context)
{
    replyNotServed(context);
}

void NDOPStorageFileHandler::unzip(NxWebViewJSContext& context)
{
    replyNotServed(context);
}

void NDOPStorageFileHandler::readDataSteam(NxWebViewJSContext& context)
{
    replyNotServed(context);
}

void NDOPStorageFileHandler::writeDataSteam(NxWebViewJSContext& context)
{
    replyNotServed(context);
}
