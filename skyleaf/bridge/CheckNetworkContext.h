#pragma once

#include "zeolite/NxWebViewJSCallback.h"

#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QString>

class NxWebViewAsynJSObject;

/**
 * One check of the network: answers the page's function with "status" = "true" or "false", once, when the
 * request ends or has taken too long, and then deletes itself. Without a function to call nothing is sent.
 */
class CheckNetworkContext : public QObject
{
    Q_OBJECT
public:
    /** Takes the reply over. The bridge may go before the check has ended. */
    CheckNetworkContext(NxWebViewJSCallback callback, QNetworkReply* reply, NxWebViewAsynJSObject* bridge);
    ~CheckNetworkContext() override;

public Q_SLOTS:
    void onError(QNetworkReply::NetworkError error);
    void onFinished();
    void onTimeout();

private:
    void answer(const char* status);

    const NxWebViewJSCallback m_callback;
    const QPointer<QNetworkReply> m_reply;
    const QPointer<NxWebViewAsynJSObject> m_bridge;
    bool m_answered = false;
};
