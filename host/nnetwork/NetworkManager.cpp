#include "nnetwork/NetworkManager.h"

#include "nnetwork/NetworkExchange.h"

#include "nrt/networkAccess.h"

#include <QThread>

namespace nnetwork {
namespace {

/** One for the process, so that pages share connections and TLS sessions. User-interface thread. */
std::shared_ptr<QNetworkAccessManager> sharedAccess()
{
    static std::weak_ptr<QNetworkAccessManager> shared;

    std::shared_ptr<QNetworkAccessManager> access = shared.lock();
    if (!access) {
        access = std::make_shared<nrt::NNetworkAccessManager>();
        shared = access;
    }
    return access;
}

} // namespace

NetworkManager::NetworkManager(NetworkConfig config)
    : m_config(std::move(config))
{
}

void NetworkManager::get(const QString& url, const QVariantMap& headers, Completion completion)
{
    NetworkAsk ask;
    ask.method = QByteArrayLiteral("GET");
    ask.url = url;
    ask.headers = headers;
    ask.completion = std::move(completion);
    start(std::move(ask));
}

void NetworkManager::post(const QString& url, const QVariantMap& headers, const QByteArray& body,
                          QObject* context, Completion completion)
{
    NetworkAsk ask;
    ask.method = QByteArrayLiteral("POST");
    ask.url = url;
    ask.headers = headers;
    ask.body = body;
    ask.hasContext = context != nullptr;
    ask.context = context;
    ask.completion = std::move(completion);
    start(std::move(ask));
}

void NetworkManager::start(NetworkAsk ask)
{
    Q_ASSERT(QThread::currentThread() == m_exchanges.thread());
    if (!m_access)
        m_access = sharedAccess();
    auto* exchange = new NetworkExchange(m_access, m_config, m_tag, std::move(ask), &m_exchanges);
    exchange->start();
}

} // namespace nnetwork
