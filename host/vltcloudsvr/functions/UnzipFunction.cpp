#include "vltcloudsvr/functions/UnzipFunction.h"

#include "vltcloudsvr/archive/TreeMerge.h"
#include "vltcloudsvr/archive/ZipExtractor.h"
#include "vltcloudsvr/archive/ZipWriter.h"
#include "vltcloudsvr/records/PackageDirectory.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

namespace vlt::cloudsvr {
namespace {

bool isSet(const Values& arguments, const QString& flag)
{
    return arguments.value(flag) == QLatin1String("true");
}

} // namespace

CallResult UnzipFunction::operator()(const Caller& caller, const Values& arguments) const
{
    const Result<QString> root = packageRoot(caller.localDataDir, arguments.value(QStringLiteral("localId")));
    if (!root)
        return failure(ResultCode::BadArgument, root.error().text);
    const Result<QString> source = confinedPath(*root, arguments.value(QStringLiteral("source")));
    if (!source)
        return failure(ResultCode::BadArgument, source.error().text);
    const Result<QString> destination = confinedPath(*root, arguments.value(QStringLiteral("destination")));
    if (!destination)
        return failure(ResultCode::BadArgument, destination.error().text);

    if (!isSet(arguments, QStringLiteral("isCompress")))
        return unpack(*root, *source, *destination, isSet(arguments, QStringLiteral("isRemoveZip")));
    const QString error = writeZip(*source, *destination, m_limits);
    return error.isEmpty() ? CallResult() : failure(ResultCode::ArchiveError, error);
}

CallResult UnzipFunction::unpack(const QString& root, const QString& source, const QString& destination,
                                 bool isRemovingZip) const
{
    if (!QFileInfo(source).isFile())
        return failure(ResultCode::BadArgument, QStringLiteral("%1 is not a file").arg(source));
    // In the package itself, so that moving into place is a rename.
    const QString unpacked = root + QStringLiteral("/.unzip-") + QUuid::createUuid().toString(QUuid::Id128);
    QString error = extractZip(source, unpacked, m_limits, m_isCancelled);
    if (!error.isEmpty())
        return failure(ResultCode::ArchiveError, error);
    error = moveInto(unpacked, destination);
    QDir(unpacked).removeRecursively();
    if (!error.isEmpty())
        return failure(ResultCode::StorageError, error);
    if (isRemovingZip && !QFile::remove(source))
        return failure(ResultCode::StorageError, QStringLiteral("cannot remove %1").arg(source));
    return {};
}

} // namespace vlt::cloudsvr
