#pragma once

#include <QString>

/** The suite's log. Lines go, in order of the calls, to the log file and to the sinks. Any thread. */
class NxLoggerLite
{
public:
    static void writeInfo(const QString& tag, const QString& text);
    static void writeWarning(const QString& tag, const QString& text);
    static void writeError(const QString& tag, const QString& text);
};
