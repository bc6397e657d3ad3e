#pragma once

#include <QByteArray>

#include <deque>

namespace shell {

/** Cuts a stream of bytes into lines. A line that grows over the limit is skipped to its end and reported. */
class LineSplitter
{
public:
    struct Line
    {
        QByteArray text; //!< without its end; empty when too long
        bool tooLong = false;
    };

    /** `limit` in bytes, the end of the line not counted. */
    explicit LineSplitter(qint64 limit)
        : m_limit(limit)
    {
    }

    /** Appends the lines that `bytes` completes to `lines`. */
    void feed(const QByteArray& bytes, std::deque<Line>& lines);

private:
    /** Takes bytes of one line, none of them its end. */
    void append(const char* bytes, int size);
    Line takeLine();

    qint64 m_limit;
    QByteArray m_line;
    bool m_tooLong = false;
};

} // namespace shell
