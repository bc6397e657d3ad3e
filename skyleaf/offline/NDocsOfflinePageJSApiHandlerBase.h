#pragma once

#include "zeolite/NxWebViewJSApiHandler.h"

#include <QMap>

/** What the docs offline page's script handlers share: how they answer. User-interface thread. */
class NDocsOfflinePageJSApiHandlerBase : public NxWebViewJSApiHandler
{
    Q_OBJECT
public:
    explicit NDocsOfflinePageJSApiHandlerBase(QObject* parent, NxWebViewAsynJSObject* scriptObject = nullptr);

    /** {"callstatus": "fail", "err": message, "ipcerrorcode": code} as JSON text. */
    virtual QString makeFailResult(int code, const QString& message) const;
    /** {"callstatus": "ok", "result": true} as JSON text. */
    virtual QString makeOkResult() const;
    virtual void replyOk(NxWebViewJSContext& context) const;
    virtual void replyError(NxWebViewJSContext& context, const QString& message) const;

protected:
    /** Whether there is a function that waits for an answer, in a document that is still there. */
    bool isAwaited(const NxWebViewJSCallback& callback) const;
    /** Answers the function; nothing when none was named or its document is gone. */
    void callBack(const NxWebViewJSCallback& callback, const QString& reply) const;

    QMap<QString, NxWebViewJSCallback> m_pendingCallbacks; //!< by request id, of the present document only

private:
    void forgetPendingCallbacks();
};
