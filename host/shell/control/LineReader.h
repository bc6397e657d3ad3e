#pragma once

#include "shell/control/LineSplitter.h"
#include "shell/system/FileDescriptor.h"

#include <QObject>
#include <QSocketNotifier>

#include <deque>

namespace shell {

/**
 * Reads lines from a file descriptor without holding up the event loop. Lines are reported one by one, in
 * order; empty ones are skipped. User-interface thread.
 */
class LineReader final : public QObject
{
    Q_OBJECT
public:
    static constexpr qint64 maxLineBytes = 64LL * 1024 * 1024;

    explicit LineReader(FileDescriptor input, QObject* parent = nullptr);

Q_SIGNALS:
    void lineRead(const QByteArray& line);
    /** A line over `maxLineBytes` was skipped. */
    void lineTooLong();
    /** The other side has closed its end; raised after its last line. */
    void ended();

private:
    void onReadable();
    void reportLines();

    FileDescriptor m_input;
    QSocketNotifier m_notifier;
    LineSplitter m_splitter{maxLineBytes};
    std::deque<LineSplitter::Line> m_lines;
};

} // namespace shell
