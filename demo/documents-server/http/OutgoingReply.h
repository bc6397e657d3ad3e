#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <boost/asio/buffer.hpp>

#include "http/HttpMessage.h"

namespace documents {

/** A reply on its way, head first: which bytes go next. A file's are read when their turn comes. */
class OutgoingReply
{
public:
    /** At most `bodyLimit` bytes of the body are sent, whatever the head says. */
    OutgoingReply(std::string head, HttpReply reply, qint64 bodyLimit);

    bool isSent() const { return m_sent == m_total; }
    std::size_t sent() const { return m_sent; }

    /** How many bytes can go in one piece. */
    std::size_t available() const;

    /** The next bytes, valid until the next call; nothing when the file cannot be read any more. */
    std::optional<std::vector<boost::asio::const_buffer>> piece(std::size_t size);

    void advance(std::size_t bytes) { m_sent += bytes; }

private:
    /** Null when the file cannot be read any more. */
    const char* bodyPiece(std::size_t offset, std::size_t size);

    std::string m_head;
    HttpReply m_reply;
    std::size_t m_total;
    std::size_t m_sent = 0;
    std::string m_filePiece;
};

} // namespace documents
