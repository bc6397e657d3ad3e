#include "check.h"

#include "vltcloudsvr/archive/ZipExtractor.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

// Nothing is written outside of the directory, which is gone after a failure.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const QTemporaryDir place(QStringLiteral("/dev/shm/fuzz-XXXXXX"));
    const QString zip = place.filePath(QStringLiteral("in.zip"));
    const QString directory = place.filePath(QStringLiteral("out"));
    QFile file(zip);
    if (!file.open(QIODevice::WriteOnly))
        std::abort();
    file.write(inputBytes(data, size));
    file.close();
    vlt::cloudsvr::ArchiveLimits limits;
    limits.totalBytes = 1 << 20;
    limits.entries = 20;
    const std::atomic<bool> isCancelled{false};
    const QString error = vlt::cloudsvr::extractZip(zip, directory, limits, isCancelled);
    check(QDir(directory).exists() == error.isEmpty());
    check(QDir(directory).removeRecursively());
    check(
        QDir(place.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot) ==
        QStringList(QStringLiteral("in.zip")));
    return 0;
}
