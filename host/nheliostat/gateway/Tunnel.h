#pragma once

#include "gateway/Transport.h"

#include <QtGlobal>

#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace gateway {

/**
 * Copies bytes both ways between two connections until both sides have ended or one has failed. A side that
 * ends its sending leaves the other direction open. Holds at most one buffer per direction.
 */
class Tunnel : public TransportListener, public std::enable_shared_from_this<Tunnel>
{
public:
    /** Called once, at the end, with the number of bytes that came from the server. */
    using Done = std::function<void(qint64 bytesFromServer)>;

    Tunnel(std::shared_ptr<Transport> browser, std::shared_ptr<Transport> server, Done done);

    /** Begins with bytes that are already there for either side. */
    void start(std::string toServer, std::string toBrowser);

    /** Ends when one side has ended and the other has been silent for `silence`. */
    void expireIfDue(std::chrono::steady_clock::time_point now, std::chrono::milliseconds silence);

    void onReadable(Transport& transport) override;
    void onWritable(Transport& transport) override;

private:
    struct Direction
    {
        std::shared_ptr<Transport> from;
        std::shared_ptr<Transport> to;
        std::string pending;
        std::size_t written = 0;
        qint64 received = 0;
        bool sourceEnded = false;
        bool endPassedOn = false;
    };

    void pump();
    void end();
    /** False when the tunnel must end. */
    bool pump(Direction& direction);
    bool flush(Direction& direction, bool& blocked);

    std::array<Direction, 2> m_directions; //!< to the server, to the browser
    Done m_done;
    qint64 m_movedBefore = 0; //!< when that was looked at last
    std::chrono::steady_clock::time_point m_movedAt;
};

} // namespace gateway
