#pragma once

#include "gateway/AnswerWriter.h"
#include "gateway/ClientLink.h"
#include "gateway/GatewayLimits.h"
#include "gateway/HandlerExchange.h"
#include "gateway/InputDiscarder.h"
#include "gateway/RequestTrace.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace gateway {

class Forwarder;
class Tunnel;
class UpstreamConnector;
class Worker;
struct ForwardOutcome;
struct Refusal;
struct ViewRoutes;

/**
 * One connection from the browser: reads requests one after the other and has each answered by a handler, a
 * local file, a one-time reply or the network. After CONNECT it goes on inside the tunnel (intercepted hosts)
 * or turns into one.
 *
 * Lives on its worker's thread and is owned by the worker until it closes. Everything that waits holds it
 * weakly.
 */
class ClientConnection final : public TransportListener,
                               public AnswerReceiver,
                               public std::enable_shared_from_this<ClientConnection>
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    ClientConnection(Worker& worker, boost::asio::ip::tcp::socket socket);
    ~ClientConnection() override;

    void start();
    void close();
    /** Ends the connection, or its request, when a peer has let a time limit pass. */
    void expireIfDue(TimePoint now);
    /** Ends a request of this view that waits for its handler. */
    void endPending(const std::string& viewId);

    void onReadable(Transport& transport) override;
    void onWritable(Transport& transport) override;
    void deliver(std::uint64_t serial, const std::optional<QVariantMap>& answer) override;

private:
    enum class State {
        ReadingHead,
        AwaitingHandler,
        Forwarding,
        Writing,
        Draining,      //!< answered before the request's body was read: the rest is dropped
        AwaitingInner, //!< CONNECT of an intercepted host granted, nothing received yet
        Handshaking,
        Connecting, //!< CONNECT of another host
        Tunnelling,
        Lingering, //!< all said; waits for the browser to close, so that it gets the answer
        Closed,
    };

    // Reading requests.
    void readRequests();
    bool parseHead();
    bool awaitInput();
    void handleRequest();
    void prepareNext();

    // Answering them.
    void route();
    bool takenByHandler(const ViewRoutes& routes);
    void answerFromHandler(const QVariantMap& answer);
    void forward();
    void onForwarded(const ForwardOutcome& outcome);
    AnswerForm form() const;
    void refuse(const Refusal& refusal);
    void failOnNetwork(int status, const std::string& reason);
    void send(Answer answer);
    void continueWriting();
    void finishRequest();
    void drain();
    void linger();
    void discardUntilClosed();

    // CONNECT.
    void handleConnect();
    void openIntercepted(HostPort endpoint);
    void beginInner();
    void shakeHands();
    void openTunnel(const HostPort& endpoint);
    void runTunnel(std::shared_ptr<Transport> server, std::string early, std::string toBrowser, int status);

    const GatewayLimits& limits() const;
    /** Without a limit the state may last for as long as it likes. */
    void setState(State state, GatewayLimits::Time limit = {});
    void expire();
    bool isIdle() const;
    void endIdle();
    void refuseSlowHead();

    Worker& m_worker;
    const std::shared_ptr<ClientLink> m_link;
    State m_state = State::ReadingHead;
    TimePoint m_deadline;
    bool m_inputLikely = false; //!< a read may give bytes without waiting
    bool m_headStarted = false;
    bool m_keepAlive = true;
    bool m_allowed = false; //!< the request needs no credentials, or carries them

    std::optional<Origin> m_inner; //!< set inside an intercepted tunnel
    RequestTrace m_trace;
    AnswerWriter m_writer;
    std::uint64_t m_serial = 0; //!< of the last exchange
    std::string m_pendingView;
    InputDiscarder m_discarder;

    std::shared_ptr<Forwarder> m_forwarder;
    std::shared_ptr<UpstreamConnector> m_connector;
    std::shared_ptr<Tunnel> m_tunnel;
};

} // namespace gateway
