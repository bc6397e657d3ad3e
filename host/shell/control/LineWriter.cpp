#include "shell/control/LineWriter.h"

#include <QElapsedTimer>
#include <QThread>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace shell {

namespace {

constexpr int lastWordsMs = 5000;

bool isWritable(int descriptor, int timeoutMs)
{
    pollfd entry{descriptor, POLLOUT, 0};
    return ::poll(&entry, 1, timeoutMs) > 0;
}

} // namespace

LineWriter::LineWriter(FileDescriptor output, QObject* parent)
    : QObject(parent)
    , m_output(std::move(output))
    , m_notifier(m_output.get(), QSocketNotifier::Write)
{
    m_notifier.setEnabled(false);
    connect(&m_notifier, &QSocketNotifier::activated, this, &LineWriter::writePending);
}

LineWriter::~LineWriter()
{
    QElapsedTimer timer;
    timer.start();
    const std::lock_guard<std::mutex> lock(m_mutex);
    while (!m_lines.empty() && timer.elapsed() < lastWordsMs) {
        if (!writeSome())
            isWritable(m_output.get(), lastWordsMs - static_cast<int>(timer.elapsed()));
    }
}

void LineWriter::write(const QByteArray& line)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_givenUp)
            return;
        m_lines.push_back(line);
        m_pendingBytes += line.size();
        if (m_pendingBytes > maxPendingBytes) {
            giveUp("the reader does not read");
            return;
        }
        if (QThread::currentThread() != thread()) {
            if (!std::exchange(m_wakeUpSent, true))
                QMetaObject::invokeMethod(this, &LineWriter::writePending, Qt::QueuedConnection);
            return;
        }
    }
    writePending();
}

void LineWriter::writePending()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_wakeUpSent = false;
    while (!m_lines.empty() && writeSome()) {
    }
    m_notifier.setEnabled(!m_lines.empty());
}

bool LineWriter::writeSome()
{
    if (!isWritable(m_output.get(), 0))
        return false;
    // A writable pipe takes this much without waiting, whether or not the descriptor is a blocking one.
    const QByteArray& line = m_lines.front();
    const int size = std::min(line.size() - m_written, PIPE_BUF);
    const ssize_t count = ::write(m_output.get(), line.constData() + m_written, static_cast<size_t>(size));
    if (count < 0) {
        if (errno == EINTR)
            return true;
        if (errno != EAGAIN)
            giveUp("the reader has gone");
        return false;
    }
    m_written += static_cast<int>(count);
    m_pendingBytes -= count;
    if (m_written == line.size()) {
        m_lines.pop_front();
        m_written = 0;
    }
    return true;
}

void LineWriter::giveUp(const char* why)
{
    m_givenUp = true;
    m_lines.clear();
    m_written = 0;
    m_pendingBytes = 0;
    std::fprintf(stderr, "skyleaf-shell: nothing more is written to standard output: %s\n", why);
}

} // namespace shell
