#include "offline/NDocsOfflinePageJSApiHandlerBase.h"

#include "base/NDocsLog.h"
#include "zeolite/JsonHelper.h"
#include "zeolite/NxWebViewAsynJSObject.h"

NDocsOfflinePageJSApiHandlerBase::NDocsOfflinePageJSApiHandlerBase(QObject* parent,
                                                                   NxWebViewAsynJSObject* scriptObject)
    : NxWebViewJSApiHandler(parent, scriptObject)
{
    if (scriptObject) {
        connect(scriptObject, &NxWebViewAsynJSObject::documentEnded, this,
                &NDocsOfflinePageJSApiHandlerBase::forgetPendingCallbacks);
    }
}

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

bool NDocsOfflinePageJSApiHandlerBase::isAwaited(const NxWebViewJSCallback& callback) const
{
    return !callback.isEmpty() && scriptObject() &&
           scriptObject()->isAnswerable(callback.document, callback.name);
}

void NDocsOfflinePageJSApiHandlerBase::callBack(const NxWebViewJSCallback& callback,
                                                const QString& reply) const
{
    if (!callback.isEmpty() && scriptObject())
        scriptObject()->callbackToJS(callback, reply, false);
}

void NDocsOfflinePageJSApiHandlerBase::forgetPendingCallbacks()
{
    if (m_pendingCallbacks.isEmpty())
        return;
    ndocslog::info(QStringLiteral("%1 answers end with their document").arg(m_pendingCallbacks.size()),
                   "NDocsOfflinePageJSApiHandlerBase::forgetPendingCallbacks");
    m_pendingCallbacks.clear();
}
