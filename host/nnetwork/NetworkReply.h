#pragma once

#include "nnetwork/INetworkManager.h"

namespace nnetwork {

class NetworkRequest final : public INetworkRequest
{
public:
    explicit NetworkRequest(QUrl url)
        : m_url(std::move(url))
    {
    }
    QUrl url() const override { return m_url; }

private:
    QUrl m_url;
};

/** How a request has ended, as values. */
class NetworkReply final : public INetworkReply
{
public:
    QVariantMap headers() const override { return headerMap; }
    int errorCode() const override { return error; }
    int httpStatusCode() const override { return status; }
    QByteArray body() const override { return bytes; }
    const INetworkRequest* request() const override { return asked.get(); }
    qint64 networkTimeMs() const override { return timeMs; }

    QVariantMap headerMap;
    int error = 0;
    int status = 0;
    QByteArray bytes; ///< empty unless the whole body arrived
    std::shared_ptr<const NetworkRequest> asked;
    qint64 timeMs = 0;
};

} // namespace nnetwork
