#pragma once

#include <QObject>

#include <memory>
#include <thread>

namespace apache::thrift::server {
class TServer;
}

namespace vlt::cloudsvr {

namespace rpc {
class CloudServiceIf;
}

/** Answers the clients of a local socket, each on a thread of its own. */
class SocketServer final : public QObject
{
    Q_OBJECT
public:
    explicit SocketServer(QString socketPath, QObject* parent = nullptr);
    /** Ends all connections and waits for what the handler is doing. */
    ~SocketServer() override;

    /**
     * Takes over the socket's path, whatever is there; the caller made sure that no other service has it. For
     * this user only. Empty, or the error.
     */
    QString start(std::shared_ptr<rpc::CloudServiceIf> handler);

Q_SIGNALS:
    /** Raised on the connections' threads. */
    void clientCountChanged(int count);

private:
    class Watcher;

    const QString m_socketPath;
    std::shared_ptr<apache::thrift::server::TServer> m_server;
    std::thread m_thread;
};

} // namespace vlt::cloudsvr
