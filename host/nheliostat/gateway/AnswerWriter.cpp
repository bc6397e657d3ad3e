#include "gateway/AnswerWriter.h"

#include <algorithm>

namespace gateway {
namespace {

// One call takes no more than this, so that one big answer does not hold up a thread's other connections.
constexpr qint64 pieceSize = 2 * 1024 * 1024;

} // namespace

void AnswerWriter::begin(Answer answer)
{
    m_answer = std::move(answer);
    m_headWritten = 0;
    m_bodyWritten = 0;
}

void AnswerWriter::clear()
{
    begin(Answer());
}

IoResult AnswerWriter::writeMemory(Transport& transport)
{
    const bool fromFile = m_answer.file.isOpen();
    iovec parts[2];
    int count = 0;
    const std::size_t headRest = m_answer.head.size() - m_headWritten;
    if (headRest > 0)
        parts[count++] = {m_answer.head.data() + m_headWritten, headRest};
    const qint64 bodyRest = fromFile ? 0 : std::min(m_answer.bodyBytes - m_bodyWritten, pieceSize);
    if (bodyRest > 0)
        parts[count++] = {const_cast<char*>(m_answer.body.constData()) + m_bodyWritten,
                          static_cast<std::size_t>(bodyRest)};
    const IoResult result = transport.write(parts, count, fromFile && m_answer.bodyBytes > 0);
    const std::size_t headPart = std::min(result.bytes, headRest);
    m_headWritten += headPart;
    m_bodyWritten += static_cast<qint64>(result.bytes - headPart);
    return result;
}

IoResult AnswerWriter::resume(Transport& transport)
{
    while (m_headWritten < m_answer.head.size() || m_bodyWritten < m_answer.bodyBytes) {
        IoResult result;
        if (m_headWritten == m_answer.head.size() && m_answer.file.isOpen()) {
            const qint64 size = std::min(m_answer.bodyBytes - m_bodyWritten, pieceSize);
            result = transport.sendFile(m_answer.file.get(), m_bodyWritten, static_cast<std::size_t>(size));
            m_bodyWritten += static_cast<qint64>(result.bytes);
        } else {
            result = writeMemory(transport);
        }
        if (!result.done())
            return result;
    }
    return {};
}

} // namespace gateway
