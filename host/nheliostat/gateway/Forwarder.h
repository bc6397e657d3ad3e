#pragma once

#include "gateway/HeadScanner.h"
#include "gateway/HeaderRules.h"
#include "gateway/RequestSender.h"
#include "gateway/ResponseHead.h"

#include <QtGlobal>

#include <chrono>
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
        Finished, //!< the whole response has been sent to the browser
        Switched, //!< status 101 has been sent: a tunnel follows, on the transport in `upstream`
        Failed,   //!< nothing final has been sent to the browser; `failure` says why
        Broken,   //!< ended in the middle of the response, or the browser has gone
    };

    Kind kind = Kind::Broken;
    int status = 0;        //!< sent to the browser; 0 when none was
    qint64 bytes = 0;      //!< body bytes of the response
    bool reusable = false; //!< the browser's connection can take another request
    int failureStatus = 0; //!< 400: the request's body is wrong; 502: the server; 504: it took too long
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
    using TimePoint = std::chrono::steady_clock::time_point;

    Forwarder(Worker& worker, std::shared_ptr<ClientLink> link, Done done);
    ~Forwarder() override;

    void start();
    /** Ends when the server, or a browser that sends a body, has let a time limit pass. */
    void expireIfDue(TimePoint now);

    void onReadable(Transport& transport) override;
    void onWritable(Transport& transport) override;

private:
    enum class Step { Progress, NeedsInput, Blocked, Ended };

    void acquire(bool mayReuse);
    void begin(std::shared_ptr<Transport> upstream);
    void resume(Transport& transport);
    void pump();
    bool pumpRequest();
    Step pumpResponse();
    Step readResponse();
    Step parseResponse();
    void takeHead();
    void takeBody();
    Step endOfInput(const IoResult& result);
    Step headIncomplete();
    void upstreamFailed(const std::string& reason, int status = 502);
    void fail(int status, std::string text);
    void finishResponse();
    void finish(ForwardOutcome outcome);

    Worker& m_worker;
    const std::shared_ptr<ClientLink> m_link;
    Done m_done;

    std::optional<RequestSender> m_request; //!< from start to finish
    bool m_browserKeepsAlive = false;

    std::shared_ptr<UpstreamConnector> m_connector;
    std::shared_ptr<Transport> m_upstream;
    bool m_upstreamReused = false;

    boost::beast::flat_buffer m_input;
    HeadScanner m_scanner;
    std::optional<TimePoint> m_headSince; //!< a head has begun and not ended
    int m_interimAnswers = 0;
    ResponseHead m_head;
    std::string m_responsePiece;
    std::optional<ResponseParser> m_parser;
    std::string m_toBrowser;
    std::size_t m_toBrowserWritten = 0;
    BodyFraming m_responseFraming = BodyFraming::None;
    qint64 m_bodyBytes = 0;
    int m_status = 0;
    std::size_t m_received = 0;    //!< from the server, bytes
    std::size_t m_movedBefore = 0; //!< in both directions, when that was looked at last
    TimePoint m_movedAt;           //!< about when it changed last
    bool m_responseDone = false;
    bool m_switched = false;
};

} // namespace gateway
