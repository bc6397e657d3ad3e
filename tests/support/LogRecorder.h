#pragma once

#include "zeolite/logging/LogWriter.h"

#include <QStringList>

#include <mutex>

/** Keeps the lines of the process's log, as "<level> [<tag>] <text>", while it lives. */
class LogRecorder
{
public:
    LogRecorder()
        : m_sink(LogWriter::global().addSink([this](auto... line) { keep(line...); }))
    {
    }
    ~LogRecorder() { LogWriter::global().removeSink(m_sink); }
    LogRecorder(const LogRecorder&) = delete;
    LogRecorder& operator=(const LogRecorder&) = delete;

    QStringList lines() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_lines;
    }

private:
    void keep(LogLevel level, const QString& tag, const QString& text)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_lines.append(QStringLiteral("%1 [%2] %3").arg(logLevelName(level), tag, text));
    }

    mutable std::mutex m_mutex;
    QStringList m_lines;
    const int m_sink;
};
