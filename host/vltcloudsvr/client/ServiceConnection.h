#pragma once

#include <QString>

#include <memory>
#include <mutex>

namespace apache::thrift::transport {
class TSocket;
}

namespace vlt::cloudsvr {

namespace rpc {
class CloudServiceClient;
}

/**
 * One connection to the service. Used on one thread, except `interrupt`. An operation of `client()` that
 * throws leaves a connection that must be closed: what is still under way on it must not answer a later call.
 */
class ServiceConnection
{
public:
    explicit ServiceConnection(QString socketPath);
    ~ServiceConnection();
    ServiceConnection(const ServiceConnection&) = delete;
    ServiceConnection& operator=(const ServiceConnection&) = delete;

    /** Whether it is open, the service is at the other end, and nothing is left over on it. */
    bool isUsable();
    /** Opens it anew and waits for the service's first answer. */
    bool open();
    void close();
    rpc::CloudServiceClient& client() { return *m_client; }
    /** How long an operation may take. */
    void setTimeout(int ms);

    /** Ends the operation that is under way and lets every later `open` fail. Any thread. */
    void interrupt();

private:
    const QString m_socketPath;
    std::mutex m_mutex; //!< guards the two below against `interrupt`
    std::shared_ptr<apache::thrift::transport::TSocket> m_socket;
    bool m_isInterrupted = false;
    std::unique_ptr<rpc::CloudServiceClient> m_client;
};

} // namespace vlt::cloudsvr
