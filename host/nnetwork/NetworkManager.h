#pragma once

#include "nnetwork/INetworkManager.h"
#include "nnetwork/NetworkConfig.h"

#include <QObject>

class QNetworkAccessManager;

namespace nnetwork {

struct NetworkAsk;

/**
 * The requests of one module, sent over the access manager that all managers of the process share: HTTP/1.1,
 * connections kept, no cookies, no cache, no proxy. A body without Content-Type is sent as JSON.
 *
 * Errors are those of QNetworkReply: a silence longer than the time-out is a TimeoutError, a body beyond the
 * limit an OperationCanceledError, a redirect to another origin an InsecureRedirectError, more redirects than
 * are followed a TooManyRedirectsError. A reply that was not received whole has no body; only a chunked one
 * that was cut off can pass for whole, since Qt does not always tell.
 */
class NetworkManager final : public INetworkManager
{
public:
    explicit NetworkManager(NetworkConfig config);

    void setTag(const QString& tag) override { m_tag = tag; }
    void get(const QString& url, const QVariantMap& headers, Completion completion) override;
    void post(const QString& url, const QVariantMap& headers, const QByteArray& body, QObject* context,
              Completion completion) override;

private:
    void start(NetworkAsk ask);

    const NetworkConfig m_config;
    QString m_tag;
    std::shared_ptr<QNetworkAccessManager> m_access; ///< made with the first request
    QObject m_exchanges;                             ///< parent of the requests under way
};

} // namespace nnetwork
