#include "http/OutgoingReply.h"

#include <algorithm>

namespace documents {
namespace {

constexpr std::size_t filePieceSize = 256UL * 1024;

} // namespace

OutgoingReply::OutgoingReply(std::string head, HttpReply reply, qint64 bodyLimit)
    : m_head(std::move(head))
    , m_reply(std::move(reply))
    , m_total(m_head.size() + static_cast<std::size_t>(std::min(bodyLimit, m_reply.bodySize())))
{
}

std::size_t OutgoingReply::available() const
{
    return m_reply.file ? std::min(m_total - m_sent, filePieceSize) : m_total - m_sent;
}

std::optional<std::vector<boost::asio::const_buffer>> OutgoingReply::piece(std::size_t size)
{
    const std::size_t headSent = std::min(m_sent, m_head.size());
    const std::size_t fromHead = std::min(size, m_head.size() - headSent);
    // Only parts with bytes: a TLS stream given an empty first buffer writes nothing, again and again.
    std::vector<boost::asio::const_buffer> buffers;
    if (fromHead > 0)
        buffers.emplace_back(m_head.data() + headSent, fromHead);
    if (size > fromHead) {
        const char* body = bodyPiece(m_sent - headSent, size - fromHead);
        if (!body)
            return std::nullopt;
        buffers.emplace_back(body, size - fromHead);
    }
    return buffers;
}

const char* OutgoingReply::bodyPiece(std::size_t offset, std::size_t size)
{
    if (!m_reply.file)
        return m_reply.body.constData() + offset;
    m_filePiece.resize(size);
    const auto wanted = static_cast<qint64>(size);
    return m_reply.file->read(m_filePiece.data(), wanted) == wanted ? m_filePiece.data() : nullptr;
}

} // namespace documents
