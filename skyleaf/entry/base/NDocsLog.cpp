#include "base/NDocsLog.h"

#include "zeolite/NxLoggerLite.h"

namespace ndocslog {
namespace {

QString tag()
{
    return QStringLiteral("skyleaf");
}

} // namespace

QString line(const QString& message, const QString& operation)
{
    return QStringLiteral("%1--%2").arg(message, operation);
}

void info(const QString& message, const char* operation)
{
    NxLoggerLite::writeInfo(tag(), line(message, QLatin1String(operation)));
}

void warning(const QString& message, const char* operation)
{
    NxLoggerLite::writeWarning(tag(), line(message, QLatin1String(operation)));
}

void error(const QString& message, const char* operation)
{
    NxLoggerLite::writeError(tag(), line(message, QLatin1String(operation)));
}

} // namespace ndocslog
