#include "shell/control/LineSplitter.h"

#include <utility>

namespace shell {

void LineSplitter::feed(const QByteArray& bytes, std::deque<Line>& lines)
{
    int start = 0;
    while (start < bytes.size()) {
        const int end = bytes.indexOf('\n', start);
        if (end < 0) {
            append(bytes.constData() + start, bytes.size() - start);
            return;
        }
        append(bytes.constData() + start, end - start);
        lines.push_back(takeLine());
        start = end + 1;
    }
}

void LineSplitter::append(const char* bytes, int size)
{
    if (!m_tooLong && m_line.size() + static_cast<qint64>(size) > m_limit) {
        m_tooLong = true;
        m_line = QByteArray();
    }
    if (!m_tooLong)
        m_line.append(bytes, size);
}

LineSplitter::Line LineSplitter::takeLine()
{
    QByteArray text = std::exchange(m_line, QByteArray());
    if (text.endsWith('\r'))
        text.chop(1);
    return {text, std::exchange(m_tooLong, false)};
}

} // namespace shell
