#include "handlers/NPrintFileHandler.h"

namespace {

void replyNotServed(NxWebViewJSContext& context)
{
    context.reply()["resultStatus"] = "failed";
    context.reply()["errorMsg"] =
        QStringLiteral("%1 is not available yet").arg(context.method()).toStdString();
}

} // namespace

NPrintFileHandler::NPrintFileHandler(QObject* parent, NxWebViewAsynJSObject* scriptObject, QObject* host)
    : NxWebViewJSApiHandler(parent, scriptObject)
    , m_host(host)
{
}

void NPrintFileHandler::getPrintFileTempPath(NxWebViewJSContext& context)
{
    replyNotServed(context);
}

void NPrintFileHandler::selectPrintFileSavePath(NxWebViewJSContext& context)
{
    replyNotServed(context);
}

void NPrintFileHandler::isSupportVltDocsPrint(NxWebViewJSContext& context)
{
    replyNotServed(context);
}

void NPrintFileHandler::printFileByZeo(NxWebViewJSContext& context)
{
    replyNotServed(context);
}
