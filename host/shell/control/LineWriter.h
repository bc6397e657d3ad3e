#pragma once

#include "shell/system/FileDescriptor.h"

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

#include <deque>
#include <mutex>

namespace shell {

/**
 * Writes lines to a file descriptor in the order of the calls, without ever waiting for the reader: what does
 * not go out at once is kept. A reader that stops reading while `maxPendingBytes` wait is given up, with a
 * warning on standard error; so is one that has closed its end.
 */
class LineWriter final : public QObject
{
    Q_OBJECT
public:
    static constexpr qint64 maxPendingBytes = 512LL * 1024 * 1024;

    explicit LineWriter(FileDescriptor output, QObject* parent = nullptr);
    /** Writes what is left, waiting for the reader no longer than a few seconds. */
    ~LineWriter() override;

    /** Takes a line with its end. Any thread. */
    void write(const QByteArray& line);

private:
    /** Writes as much as goes out without waiting. */
    void writePending();
    /** False when nothing more can be written now. The lock is held. */
    bool writeSome();
    void giveUp(const char* why);

    FileDescriptor m_output;
    QSocketNotifier m_notifier;
    std::mutex m_mutex;
    std::deque<QByteArray> m_lines; //!< guarded by the mutex, as all below
    int m_written = 0;              //!< bytes of the first line that are out
    qint64 m_pendingBytes = 0;
    bool m_wakeUpSent = false;
    bool m_givenUp = false;
};

} // namespace shell
