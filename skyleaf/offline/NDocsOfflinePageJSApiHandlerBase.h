#pragma once

#include "zeolite/NxWebViewJSApiHandler.h"

#include <QMap>

/** What the docs offline page's script handlers share: how they answer. User-interface thread. */
class NDocsOfflinePageJSApiHandlerBase : public NxWebViewJSApiHandler
{
    Q_OBJECT
public:
    using NxWebViewJSApiHandler::NxWebViewJSApiHandler;

    /** {"callstatus": "fail", "err": message, "ipcerrorcode": code} as JSON text. */
    virtual QString makeFailResult(int code, const QString& message) const;
    /** {"callstatus": "ok", "result": true} as JSON text. */
    virtual QString makeOkResult() const;
    virtual void replyOk(NxWebViewJSContext& context) const;
    virtual void replyError(NxWebViewJSContext& context, const QString& message) const;

protected:
    QMap<QString, QString> m_pendingCallbacks; //!< request id to script callback name
};
