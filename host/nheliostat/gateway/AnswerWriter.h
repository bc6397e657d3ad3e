#pragma once

#include "gateway/Answers.h"
#include "gateway/Transport.h"

namespace gateway {

/** Writes one answer to a connection, piece by piece as the connection takes it. */
class AnswerWriter
{
public:
    void begin(Answer answer);
    /** Done: all is written. Otherwise to be called again when the connection is ready for it. */
    IoResult resume(Transport& transport);

    const Answer& answer() const { return m_answer; }
    /** Body bytes written so far. */
    qint64 bodyWritten() const { return m_bodyWritten; }
    /** Lets the body go. */
    void clear();

private:
    IoResult writeMemory(Transport& transport);

    Answer m_answer;
    std::size_t m_headWritten = 0;
    qint64 m_bodyWritten = 0;
};

} // namespace gateway
