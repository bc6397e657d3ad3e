#include "shell/story/ProcessMemory.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QMultiHash>

#include <unistd.h>

namespace shell {

namespace {

QByteArray procFile(qint64 pid, const char* name)
{
    QFile file(QStringLiteral("/proc/%1/%2").arg(pid).arg(QLatin1String(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/** 0 when the process is gone. */
qint64 parentOf(qint64 pid)
{
    // The name in brackets may hold anything, brackets too.
    const QByteArray stat = procFile(pid, "stat");
    const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    return fields.size() > 1 ? fields.at(1).toLongLong() : 0;
}

qint64 residentBytes(qint64 pid)
{
    static const qint64 pageBytes = sysconf(_SC_PAGESIZE);
    const QList<QByteArray> fields = procFile(pid, "statm").split(' ');
    return fields.size() > 1 ? fields.at(1).toLongLong() * pageBytes : 0;
}

bool isBrowser(qint64 pid)
{
    return procFile(pid, "comm").startsWith("QtWebEngine");
}

} // namespace

MemoryUse memoryUse()
{
    QMultiHash<qint64, qint64> children;
    const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        bool isPid = false;
        const qint64 pid = entry.toLongLong(&isPid);
        if (isPid)
            children.insert(parentOf(pid), pid);
    }
    const qint64 self = getpid();
    MemoryUse use;
    use.shell = residentBytes(self);
    QList<qint64> left = children.values(self);
    while (!left.isEmpty()) {
        const qint64 pid = left.takeFirst();
        left += children.values(pid);
        if (!isBrowser(pid))
            continue;
        use.browser += residentBytes(pid);
        ++use.browserProcesses;
    }
    return use;
}

} // namespace shell
