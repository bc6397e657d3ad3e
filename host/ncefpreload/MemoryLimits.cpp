#include "ncefpreload/MemoryLimits.h"

#include <QByteArray>
#include <QFile>
#include <QList>

#include <limits>

#include <unistd.h>

namespace ncefpreload {

namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

qint64 residentBytes(qint64 process)
{
    static const qint64 pageBytes = sysconf(_SC_PAGESIZE);
    const QList<QByteArray> fields = contentOf(QStringLiteral("/proc/%1/statm").arg(process)).split(' ');
    return fields.size() > 1 ? fields.at(1).toLongLong() * pageBytes : 0;
}

qint64 availableBytes()
{
    const QByteArray name = QByteArrayLiteral("MemAvailable:");
    const QByteArrayList lines = contentOf(QStringLiteral("/proc/meminfo")).split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(name))
            return line.mid(name.size()).trimmed().split(' ').first().toLongLong() * 1024;
    }
    return std::numeric_limits<qint64>::max();
}

} // namespace ncefpreload
