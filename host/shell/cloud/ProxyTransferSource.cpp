#include "shell/cloud/ProxyTransferSource.h"

#include "nheliostat/framework/ShellCloudSvrProxy.h"

#include <utility>

namespace shell {

using namespace vlt::cloudsvr;

ProxyTransferSource::ProxyTransferSource(ShellCloudSvrProxy& proxy, TransferDirection direction,
                                         QObject* parent)
    : TransferSource(parent)
    , m_proxy(&proxy)
    , m_direction(direction)
{
    connect(&proxy, &ShellCloudSvrProxy::transfersChanged, this, &TransferSource::changed);
    connect(&proxy, &ShellCloudSvrProxy::loginStatusChanged, this, &TransferSource::changed);
}

void ProxyTransferSource::list(int offset, int count, Reply reply)
{
    if (m_proxy)
        m_proxy->listTransfers(m_direction, offset, count, std::move(reply));
    else
        QMetaObject::invokeMethod(
            this, [reply = std::move(reply)] { reply(false, {}); }, Qt::QueuedConnection);
}

void ProxyTransferSource::cancel(const QStringList& ids)
{
    if (m_proxy)
        m_proxy->cancelTransfers(ids);
}

void ProxyTransferSource::retry(const QStringList& ids)
{
    if (m_proxy)
        m_proxy->retryTransfers(ids);
}

void ProxyTransferSource::clearFinished()
{
    if (m_proxy)
        m_proxy->clearFinishedTransfers(m_direction);
}

} // namespace shell
