#pragma once

#include "gateway/ClientLink.h"
#include "gateway/HeaderRules.h"

#include <string>

namespace gateway {

/**
 * The request of a link on its way to the server: its head as the server gets it, then the body as the
 * browser sends it. Holds one buffer; while the request may have to be sent again, up to 64 KiB of what was
 * sent stay.
 */
class RequestSender
{
public:
    enum class Result {
        Waiting,     //!< a wait is under way, or nothing is left to send
        BrowserLeft, //!< in the middle of its body
        Malformed,   //!< what the browser sends is no body any more
    };

    /** Of a link whose head is parsed. */
    explicit RequestSender(ClientLink& link);
    ~RequestSender();
    RequestSender(const RequestSender&) = delete;
    RequestSender& operator=(const RequestSender&) = delete;

    /** Moves what can be moved now, and says what to wait for. */
    Result pump(Transport& server);
    /** Begins anew, for another connection. Only while `canRepeat`. */
    void restart();
    /** It will not be sent again. */
    void forget();

    /** Asks to go on as a web socket. */
    bool asksSwitch() const { return m_asksSwitch; }
    /** Sending it twice does no harm, and all that was sent is still here. */
    bool canRepeat() const { return m_canRepeat; }
    /** The browser has sent everything. */
    bool isRead() const { return m_isRead; }
    /** Bytes that went through here. */
    std::size_t moved() const { return m_moved; }

private:
    enum class Step { Progress, Waiting, BrowserLeft, Malformed };

    Step readBody();
    bool parseBody(boost::system::error_code& error);

    ClientLink& m_link;
    const BodyFraming m_framing;
    const bool m_asksSwitch;
    bool m_canRepeat;
    bool m_isRead;
    bool m_isBroken = false; //!< the server takes no more; it may still answer
    std::string m_bytes;     //!< for the server; while `m_canRepeat`, from the first one on
    std::size_t m_written = 0;
    std::size_t m_moved = 0;
    std::string m_bodyPiece;
};

} // namespace gateway
