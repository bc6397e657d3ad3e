#include "gateway/RequestGateway.h"

#include "gateway/Acceptor.h"
#include "gateway/GatewayContext.h"
#include "gateway/Worker.h"

#include <algorithm>

class RequestGateway::Private
{
public:
    explicit Private(const GatewayOptions& options);
    ~Private();

    gateway::GatewayContext context;
    std::vector<std::unique_ptr<gateway::Worker>> workers;
    std::unique_ptr<gateway::Acceptor> acceptor;
};

RequestGateway::Private::Private(const GatewayOptions& options)
    : context(options)
{
    for (int i = 0; i < std::max(options.threads, 1); ++i)
        workers.push_back(std::make_unique<gateway::Worker>(context));
    acceptor = std::make_unique<gateway::Acceptor>(workers);
    acceptor->start();
    for (const auto& worker : workers)
        worker->start();
}

RequestGateway::Private::~Private()
{
    workers.front()->mailbox()->post([this] { acceptor->stop(); });
    for (const auto& worker : workers)
        worker->stop();
    acceptor.reset();
}

RequestGateway::RequestGateway(GatewayOptions options)
    : d(std::make_unique<Private>(options))
{
}

RequestGateway::~RequestGateway() = default;

quint16 RequestGateway::port() const
{
    return d->acceptor->port();
}

QString RequestGateway::user() const
{
    return QString::fromStdString(d->context.credentials.user());
}

QString RequestGateway::password() const
{
    return QString::fromStdString(d->context.credentials.password());
}

QByteArray RequestGateway::certificateDer() const
{
    return d->context.tls.certificateDer();
}

QByteArray RequestGateway::openView()
{
    return QByteArray::fromStdString(d->context.views.open());
}

void RequestGateway::closeView(const QByteArray& viewId)
{
    d->context.views.close(viewId.toStdString());
    for (const auto& worker : d->workers)
        worker->endPending(viewId.toStdString());
}

void RequestGateway::addHandlers(const QByteArray& viewId, const QVector<GatewayHandler>& handlers)
{
    d->context.views.addHandlers(viewId.toStdString(), handlers);
}

void RequestGateway::removeHandlers(const QByteArray& viewId, const QStringList& urlPrefixes)
{
    d->context.views.removeHandlers(viewId.toStdString(), urlPrefixes);
}

void RequestGateway::clearHandlers(const QByteArray& viewId)
{
    d->context.views.clearHandlers(viewId.toStdString());
}

void RequestGateway::setLocalDirectory(const QByteArray& viewId, const QString& urlPrefix,
                                       const QString& directory)
{
    d->context.views.setDirectory(viewId.toStdString(), urlPrefix.toStdString(), directory.toStdString());
}

void RequestGateway::removeLocalDirectory(const QByteArray& viewId, const QString& urlPrefix)
{
    d->context.views.removeDirectory(viewId.toStdString(), urlPrefix.toStdString());
}

QUrl RequestGateway::publishReply(const QByteArray& viewId, const QUrl& origin, const QByteArray& body,
                                  const QByteArray& contentType)
{
    const QByteArray base =
        origin.toEncoded(QUrl::RemoveUserInfo | QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment);
    const auto target = gateway::targetOfAbsoluteForm(base.toStdString() + std::string(gateway::replyPath) +
                                                      gateway::randomHex(16));
    if (!target || !d->context.views.publish(viewId.toStdString(), target->url, {body, contentType}))
        return {};
    return QUrl::fromEncoded(QByteArray::fromStdString(target->url));
}
