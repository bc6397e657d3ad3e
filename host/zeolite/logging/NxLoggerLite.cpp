#include "zeolite/NxLoggerLite.h"

#include "zeolite/logging/LogWriter.h"

void NxLoggerLite::writeInfo(const QString& tag, const QString& text)
{
    LogWriter::global().write(LogLevel::Info, tag, text);
}

void NxLoggerLite::writeWarning(const QString& tag, const QString& text)
{
    LogWriter::global().write(LogLevel::Warning, tag, text);
}

void NxLoggerLite::writeError(const QString& tag, const QString& text)
{
    LogWriter::global().write(LogLevel::Error, tag, text);
}
