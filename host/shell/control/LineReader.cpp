#include "shell/control/LineReader.h"

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace shell {

LineReader::LineReader(FileDescriptor input, QObject* parent)
    : QObject(parent)
    , m_input(std::move(input))
    , m_notifier(m_input.get(), QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, &LineReader::onReadable);
}

void LineReader::onReadable()
{
    // One read per activation: the descriptor may be a blocking one, and only the first read is sure not to
    // wait.
    QByteArray bytes(256 * 1024, Qt::Uninitialized);
    const ssize_t count = ::read(m_input.get(), bytes.data(), static_cast<size_t>(bytes.size()));
    if (count < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (count <= 0) {
        m_notifier.setEnabled(false);
        Q_EMIT ended();
        return;
    }
    bytes.truncate(static_cast<int>(count));
    m_splitter.feed(bytes, m_lines);
    reportLines();
}

void LineReader::reportLines()
{
    // A slot may run an event loop of its own that comes back here: every line is taken out before it is
    // reported.
    while (!m_lines.empty()) {
        const LineSplitter::Line line = std::move(m_lines.front());
        m_lines.pop_front();
        if (line.tooLong)
            Q_EMIT lineTooLong();
        else if (!line.text.isEmpty())
            Q_EMIT lineRead(line.text);
    }
}

} // namespace shell
