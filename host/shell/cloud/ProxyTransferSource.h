#pragma once

#include "shell/cloud/TransferSource.h"

#include <QPointer>

class ShellCloudSvrProxy;

namespace shell {

/** The transfers of the cloud service. Without the proxy, which may go earlier, lists fail. */
class ProxyTransferSource final : public TransferSource
{
    Q_OBJECT
public:
    ProxyTransferSource(ShellCloudSvrProxy& proxy, vlt::cloudsvr::TransferDirection direction,
                        QObject* parent = nullptr);

    vlt::cloudsvr::TransferDirection direction() const override { return m_direction; }
    void list(int offset, int count, Reply reply) override;
    void cancel(const QStringList& ids) override;
    void retry(const QStringList& ids) override;
    void clearFinished() override;

private:
    QPointer<ShellCloudSvrProxy> m_proxy;
    const vlt::cloudsvr::TransferDirection m_direction;
};

} // namespace shell
