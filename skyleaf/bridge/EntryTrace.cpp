#include "bridge/EntryTrace.h"

#include "zeolite/NxLoggerLite.h"

void traceEntry(const char* method, int line)
{
    NxLoggerLite::writeInfo(QStringLiteral("NHelioCloudDocsAsynJsObj"),
                            QStringLiteral("<%1#%2>").arg(QLatin1String(method)).arg(line));
}
