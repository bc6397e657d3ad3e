#include "offline/NDocsOfflinePageJSApiHandlerBase.h"

#include "zeolite/JsonHelper.h"

QString NDocsOfflinePageJSApiHandlerBase::makeFailResult(int code, const QString& message) const
{
    return JsonHelper::convertQJsonToString({{QStringLiteral("callstatus"), QStringLiteral("fail")},
                                             {QStringLiteral("err"), message},
                                             {QStringLiteral("ipcerrorcode"), code}});
}

QString NDocsOfflinePageJSApiHandlerBase::makeOkResult() const
{
    return JsonHelper::convertQJsonToString(
        {{QStringLiteral("callstatus"), QStringLiteral("ok")}, {QStringLiteral("result"), true}});
}

void NDocsOfflinePageJSApiHandlerBase::replyOk(NxWebViewJSContext& context) const
{
    context.reply()["callstatus"] = "ok";
    context.reply()["result"] = true;
}

void NDocsOfflinePageJSApiHandlerBase::replyError(NxWebViewJSContext& context, const QString& message) const
{
    context.reply()["callstatus"] = "error";
    context.reply()["err"] = message.toStdString();
}
