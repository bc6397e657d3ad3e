#pragma once

#include "gateway/ClientLink.h"
#include "gateway/HeaderRules.h"
#include "gateway/ResponseHead.h"

#include <QtGlobal>

#include <functional>
#include <memory>
#include <string>

namespace gateway {

class UpstreamConnector;
class Worker;

/** How forwarding one request has ended. */
struct ForwardOutcome
{
    enum class Kind {
        Finished,    //!< the whole response has been sent to the browser
        Switched,    //!< status 101 has been sent: a tunnel follows, on the transport in `upstream`
        Unreachable, //!< nothing final has been sent to the browser; `failure` says why
        Broken,      //!< ended in the middle of the response, or the browser has gone
    };

    Kind kind = Kind::Broken;
    int status = 0;        //!< sent to the browser; 0 when none was
    qint64 bytes = 0;      //!< body bytes of the response
    bool reusable = false; //!< the browser's connection can take another request
    std::string failure = {};
    std::shared_ptr<Transport> upstream = {};
    std::string early = {}; //!< bytes that the server sent behind its 101
};

/**
 * Sends the link's request to its server and the response back, both as they come: at most one buffer waits
 * in each direction, and a slow side slows the other. One thread.
 */
class Forwarder : public TransportListener, public std::enable_shared_from_this<Forwarder>
{
public:
    using Done = std::function<void(const ForwardOutcome& outcome)>;

    Forwarder(Worker& worker, std::shared_ptr<ClientLink> link, Done done);
    ~Forwarder() override;

    void start();

    void onReadable(Transport& transport) override;
    void onWritable(Transport& transport) override;

private:
    enum class Step { Progress, NeedsInput, Blocked, Ended };

    void acquire(bool mayReuse);
    void begin(std::shared_ptr<Transport> upstream);
    void resume(Transport& transport);
    void pump();
    void pumpRequest();
    Step readRequestBody();
    Step pumpResponse();
    Step readResponse();
    Step parseResponse();
    void takeHead();
    void takeBody();
    Step endOfInput(const IoResult& result);
    void upstreamFailed(const std::string& reason);
    void finishResponse();
    void finish(ForwardOutcome outcome);

    Worker& m_worker;
    const std::shared_ptr<ClientLink> m_link;
    Done m_done;

    // What the request is like; fixed by start.
    std::string m_requestHead;
    BodyFraming m_requestFraming = BodyFraming::None;
    bool m_asksSwitch = false;
    bool m_isRepeatable = false;
    bool m_browserKeepsAlive = false;

    std::shared_ptr<UpstreamConnector> m_connector;
    std::shared_ptr<Transport> m_upstream;
    bool m_upstreamReused = false;

    std::string m_toServer;
    std::size_t m_toServerWritten = 0;
    std::string m_bodyPiece;
    bool m_requestDone = false;
    bool m_requestBroken = false; //!< the server takes no more; it may still answer

    boost::beast::flat_buffer m_input;
    ResponseHead m_head;
    std::string m_responsePiece;
    std::optional<ResponseParser> m_parser;
    std::string m_toBrowser;
    std::size_t m_toBrowserWritten = 0;
    BodyFraming m_responseFraming = BodyFraming::None;
    qint64 m_bodyBytes = 0;
    int m_status = 0;
    bool m_heard = false;
    bool m_responseDone = false;
    bool m_switched = false;
};

} // namespace gateway
