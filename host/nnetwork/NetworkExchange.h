#pragma once

#include "nnetwork/NetworkConfig.h"
#include "nnetwork/NetworkReply.h"

#include <QElapsedTimer>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QTimer>

class QNetworkAccessManager;

namespace nnetwork {

struct Redirect;

/** A request as the caller wants it. */
struct NetworkAsk
{
    QByteArray method; ///< "GET" or "POST"
    QString url;
    QVariantMap headers;
    QByteArray body;
    bool hasContext = false; ///< the completion is dropped once `context` is gone
    QPointer<QObject> context;
    INetworkManager::Completion completion;
};

/**
 * One request from its sending, over the redirects that it follows, to its completion. Completes at a turn of
 * the event loop of its own, when no code of the access manager is under way, so that a completion may
 * release everything; it deletes itself then. Deleted earlier it ends without completion.
 */
class NetworkExchange final : public QObject
{
public:
    static constexpr int maxRedirects = 5;

    NetworkExchange(std::shared_ptr<QNetworkAccessManager> access, const NetworkConfig& config, QString tag,
                    NetworkAsk ask, QObject* parent);
    ~NetworkExchange() override;

    void start();

private:
    void send();
    void onReadyRead();
    void onMetaDataChanged();
    void onProgress();
    void onEncrypted();
    void hurryBody();
    void onTimeout();
    void onFinished();
    /** Ends the exchange unless a redirect is followed; the reply has finished. */
    void conclude();
    /** Stops the transfer: it ends with this error. */
    void breakOff(QNetworkReply::NetworkError error);
    void follow(const Redirect& redirect);
    void end(int error);
    void deliver();
    void logFailure() const;

    const std::shared_ptr<QNetworkAccessManager> m_access;
    const NetworkConfig m_config;
    const QString m_tag;
    NetworkAsk m_ask;
    QUrl m_url; ///< of the present hop, with the host's name
    int m_redirects = 0;

    QPointer<QNetworkReply> m_reply;
    QByteArray m_received;
    QNetworkReply::NetworkError m_brokenOff = QNetworkReply::NoError;
    QTimer m_silence;
    QElapsedTimer m_elapsed;
    NetworkReply m_outcome;
};

} // namespace nnetwork
