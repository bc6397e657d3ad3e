#include "nnetwork/NetworkManager.h"

#include "nnetwork/NetworkExchange.h"

#include "nrt/networkAccess.h"

#include <QCoreApplication>
#include <QThread>

namespace nnetwork {
namespace {

std::shared_ptr<QNetworkAccessManager>& keptAccess()
{
    static std::shared_ptr<QNetworkAccessManager> kept;
    return kept;
}

/**
 * One for as long as the application lives, so that a page finds the connections and TLS sessions of the
 * pages before it. User-interface thread.
 */
std::shared_ptr<QNetworkAccessManager> sharedAccess()
{
    std::shared_ptr<QNetworkAccessManager>& kept = keptAccess();
    if (!kept) {
        kept = std::make_shared<nrt::NNetworkAccessManager>();
        qAddPostRoutine([] { keptAccess().reset(); });
    }
    return kept;
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
