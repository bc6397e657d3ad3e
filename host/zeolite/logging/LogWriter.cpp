#include "zeolite/logging/LogWriter.h"

#include <QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(lcLog, "zeolite.log")

QString onOneLine(QString text)
{
    if (!text.contains(QLatin1Char('\n')) && !text.contains(QLatin1Char('\r')))
        return text;
    return text.replace(QLatin1Char('\n'), QLatin1String("\\n"))
        .replace(QLatin1Char('\r'), QLatin1String("\\r"));
}

} // namespace

QString logLevelName(LogLevel level)
{
    switch (level) {
    case LogLevel::Info:
        return QStringLiteral("info");
    case LogLevel::Warning:
        return QStringLiteral("warning");
    case LogLevel::Error:
        break;
    }
    return QStringLiteral("error");
}

QByteArray formatLogLine(const LogLine& line, const QDateTime& time)
{
    const QString text = time.toString(Qt::ISODateWithMs) + QLatin1Char(' ') + logLevelName(line.level) +
                         QLatin1String(" [") + onOneLine(line.tag) + QLatin1String("] ") +
                         onOneLine(line.text) + QLatin1Char('\n');
    return text.toUtf8();
}

LogWriter::LogWriter()
    : m_delivery([this](const LogLine& line) { writeToFile(line); })
{
}

LogWriter& LogWriter::global()
{
    static LogWriter writer;
    return writer;
}

void LogWriter::setFile(const QString& path, qint64 limit)
{
    const std::lock_guard<std::mutex> lock(m_fileMutex);
    m_file = path.isEmpty() ? nullptr : std::make_unique<RotatingFile>(path, limit);
    m_fileFailed = false;
}

int LogWriter::addSink(Sink sink)
{
    return m_delivery.addObserver(
        [sink = std::move(sink)](const LogLine& line) { sink(line.level, line.tag, line.text); });
}

void LogWriter::removeSink(int id)
{
    m_delivery.removeObserver(id);
}

void LogWriter::write(LogLevel level, const QString& tag, const QString& text)
{
    m_delivery.post({level, tag, text});
}

void LogWriter::writeToFile(const LogLine& line)
{
    QString error;
    {
        const std::lock_guard<std::mutex> lock(m_fileMutex);
        if (!m_file || m_file->append(formatLogLine(line, QDateTime::currentDateTime())) || m_fileFailed)
            return;
        m_fileFailed = true;
        error = m_file->errorString();
    }
    qCWarning(lcLog, "log file cannot be written: %s", qUtf8Printable(error));
}
