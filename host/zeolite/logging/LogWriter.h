#pragma once

#include "zeolite/OrderedDelivery.h"
#include "zeolite/files/RotatingFile.h"

#include <QDateTime>
#include <QString>

#include <functional>
#include <memory>
#include <mutex>

enum class LogLevel { Info, Warning, Error };

/** "info", "warning", "error". */
QString logLevelName(LogLevel level);

struct LogLine
{
    LogLevel level = LogLevel::Info;
    QString tag;
    QString text;
};

/** "<ISO time> <level> [<tag>] <text>" and a line end; line breaks and tabs inside the text are shown
 * escaped. */
QByteArray formatLogLine(const LogLine& line, const QDateTime& time);

/** Where all log lines go, in order: to a file, if one is set, and to sinks. Any thread. */
class LogWriter
{
public:
    /** Called on the logging thread; may log itself, must not add or remove sinks. */
    using Sink = std::function<void(LogLevel, const QString& tag, const QString& text)>;

    LogWriter();

    /** The process's log, which NxLoggerLite writes. */
    static LogWriter& global();

    /** An empty path ends the writing to a file. */
    void setFile(const QString& path, qint64 limit = RotatingFile::defaultLimit);
    int addSink(Sink sink);
    /** When this returns, the sink is not called any more. */
    void removeSink(int id);
    void write(LogLevel level, const QString& tag, const QString& text);

private:
    void writeToFile(const LogLine& line);

    std::mutex m_fileMutex;
    std::unique_ptr<RotatingFile> m_file;
    bool m_fileFailed = false;
    OrderedDelivery<LogLine> m_delivery;
};
