#include "vltcloudsvr/server/SocketServer.h"

#include "vltcloudsvr/common/Transport.h"

#include <QFile>

#include "CloudService.h"

#include <thrift/server/TThreadedServer.h>
#include <thrift/transport/TServerSocket.h>

#include <exception>
#include <fcntl.h>
#include <future>
#include <mutex>
#include <sys/stat.h>
#include <utility>

namespace vlt::cloudsvr {

using namespace apache::thrift;

namespace {

void closeOnExec(int descriptor)
{
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

} // namespace

/** Learns of the server's start and of its clients. */
class SocketServer::Watcher final : public server::TServerEventHandler
{
public:
    explicit Watcher(SocketServer& owner)
        : m_owner(owner)
    {
    }

    void preServe() override
    {
        ::chmod(QFile::encodeName(m_owner.m_socketPath).constData(), S_IRUSR | S_IWUSR);
        settle({});
    }
    void* createContext(std::shared_ptr<protocol::TProtocol>, std::shared_ptr<protocol::TProtocol>) override
    {
        count(1);
        return nullptr;
    }
    void deleteContext(void*, std::shared_ptr<protocol::TProtocol>,
                       std::shared_ptr<protocol::TProtocol>) override
    {
        count(-1);
    }

    /** Says once how the start went; empty for well. */
    void settle(const QString& error)
    {
        if (!std::exchange(m_isSettled, true))
            m_started.set_value(error);
    }
    QString waitForStart() { return m_started.get_future().get(); }

private:
    void count(int change)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_clients += change;
        Q_EMIT m_owner.clientCountChanged(m_clients);
    }

    SocketServer& m_owner;
    std::promise<QString> m_started;
    bool m_isSettled = false; //!< on the server's thread
    std::mutex m_mutex;
    int m_clients = 0;
};

SocketServer::SocketServer(QString socketPath, QObject* parent)
    : QObject(parent)
    , m_socketPath(std::move(socketPath))
{
}

SocketServer::~SocketServer()
{
    if (!m_server)
        return;
    // No client comes to a service that ends; it starts another one.
    QFile::remove(m_socketPath);
    m_server->stop();
    m_thread.join();
}

QString SocketServer::start(std::shared_ptr<rpc::CloudServiceIf> handler)
{
    QFile::remove(m_socketPath);
    auto socket = std::make_shared<transport::TServerSocket>(QFile::encodeName(m_socketPath).toStdString());
    socket->setListenCallback(&closeOnExec);
    socket->setAcceptCallback(&closeOnExec);
    auto watcher = std::make_shared<Watcher>(*this);
    m_server = std::make_shared<server::TThreadedServer>(
        std::make_shared<rpc::CloudServiceProcessor>(std::move(handler)), socket,
        std::make_shared<FrameFactory>(), protocolFactory());
    m_server->setServerEventHandler(watcher);
    m_thread = std::thread([server = m_server, watcher] {
        try {
            server->serve();
            watcher->settle(QStringLiteral("the server did not start"));
        } catch (const std::exception& error) {
            watcher->settle(QString::fromLocal8Bit(error.what()));
        }
    });
    const QString error = watcher->waitForStart();
    if (!error.isEmpty()) {
        m_thread.join();
        m_server.reset();
    }
    return error;
}

} // namespace vlt::cloudsvr
