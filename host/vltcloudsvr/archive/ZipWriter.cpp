#include "vltcloudsvr/archive/ZipWriter.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QMap>

#include <memory>
#include <zip.h>

namespace vlt::cloudsvr {
namespace {

struct Discard
{
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
using Archive = std::unique_ptr<zip_t, Discard>;

/** What goes into the archive, by the name there; a directory's ends with a slash. */
using Contents = QMap<QString, QString>;

QString collect(const QString& source, const QString& zipFile, const ArchiveLimits& limits,
                Contents& contents)
{
    if (QFileInfo(source).isFile()) {
        contents.insert(QFileInfo(source).fileName(), source);
        return {};
    }
    qint64 total = 0;
    QDirIterator files(source, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        const QFileInfo info = files.fileInfo();
        if (path == zipFile)
            continue;
        if (info.isSymLink() || (!info.isDir() && !info.isFile()))
            return QStringLiteral("%1 is neither a file nor a directory").arg(path);
        total += info.isFile() ? info.size() : 0;
        const QString name = QDir(source).relativeFilePath(path);
        contents.insert(info.isDir() ? QString(name + u'/') : name, path);
        if (total > limits.totalBytes || contents.size() > limits.entries)
            return QStringLiteral("there is too much in %1").arg(source);
    }
    return {};
}

bool addEntry(zip_t* archive, const QByteArray& name, const QString& path)
{
    if (name.endsWith('/'))
        return zip_dir_add(archive, name.constData(), ZIP_FL_ENC_UTF_8) >= 0;
    zip_source_t* source = zip_source_file(archive, QFile::encodeName(path).constData(), 0, -1);
    if (!source)
        return false;
    if (zip_file_add(archive, name.constData(), source, ZIP_FL_ENC_UTF_8) >= 0)
        return true;
    zip_source_free(source);
    return false;
}

} // namespace

QString writeZip(const QString& source, const QString& zipFile, const ArchiveLimits& limits)
{
    if (!QFileInfo::exists(source))
        return QStringLiteral("%1 does not exist").arg(source);
    if (QFileInfo(zipFile).isDir() || !QDir().mkpath(QFileInfo(zipFile).path()))
        return QStringLiteral("cannot write %1").arg(zipFile);
    Contents contents;
    const QString error = collect(source, zipFile, limits, contents);
    if (!error.isEmpty())
        return error;
    if (contents.isEmpty()) // the library writes no archive without entries
        return QStringLiteral("there is nothing in %1").arg(source);

    int code = 0;
    Archive archive(zip_open(QFile::encodeName(zipFile).constData(), ZIP_CREATE | ZIP_TRUNCATE, &code));
    if (!archive)
        return QStringLiteral("cannot write %1 (%2)").arg(zipFile, QString::number(code));
    for (auto entry = contents.begin(); entry != contents.end(); ++entry) {
        if (!addEntry(archive.get(), entry.key().toUtf8(), *entry))
            return QString::fromUtf8(zip_strerror(archive.get()));
    }
    // Writes beside the file and renames.
    if (zip_close(archive.get()) != 0)
        return QString::fromUtf8(zip_strerror(archive.get()));
    (void)archive.release();
    return {};
}

} // namespace vlt::cloudsvr
