#include "drive/ContentFiles.h"

#include <cstdio>

#include <QDir>
#include <QFileInfo>

namespace documents {

Error writeError(const QFileDevice& file)
{
    // A write that was cut short without an error is the file system's way to say that this was the last
    // room.
    const bool isFull = file.error() == QFileDevice::ResourceError || file.error() == QFileDevice::NoError;
    if (isFull)
        return {ErrorCode::DiskFull, QStringLiteral("The server's disk is full.")};
    return {ErrorCode::Storage, QStringLiteral("The file cannot be written: %1.").arg(file.errorString())};
}

ContentFiles::ContentFiles(QString directory)
    : m_directory(std::move(directory))
{
}

bool ContentFiles::contains(const FileContent& content) const
{
    const QFileInfo file(pathOf(content.sha1));
    return file.isFile() && file.size() == content.size;
}

std::shared_ptr<QFile> ContentFiles::open(const FileContent& content) const
{
    auto file = std::make_shared<QFile>(pathOf(content.sha1));
    const bool usable =
        file->open(QIODevice::ReadOnly | QIODevice::Unbuffered) && file->size() == content.size;
    return usable ? file : nullptr;
}

Failure ContentFiles::store(const FileContent& content, const QByteArray& bytes) const
{
    if (contains(content))
        return std::nullopt;
    if (!QDir().mkpath(m_directory))
        return Error{ErrorCode::Storage, QStringLiteral("\"%1\" cannot be made.").arg(m_directory)};
    QFile file(m_directory + QLatin1String("/incoming"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered) ||
        file.write(bytes) != bytes.size()) {
        const Error error = writeError(file);
        file.remove();
        return error;
    }
    file.close();
    return adopt(content, file.fileName());
}

Failure ContentFiles::adopt(const FileContent& content, const QString& path) const
{
    const QString place = pathOf(content.sha1);
    // QFile::rename would not replace a damaged file of that name.
    const bool isPlaced =
        QDir().mkpath(QFileInfo(place).path()) &&
        std::rename(QFile::encodeName(path).constData(), QFile::encodeName(place).constData()) == 0;
    if (isPlaced)
        return std::nullopt;
    return Error{ErrorCode::Storage, QStringLiteral("The file's content cannot be put in its place.")};
}

void ContentFiles::remove(const QString& sha1) const
{
    QFile::remove(pathOf(sha1));
}

QString ContentFiles::pathOf(const QString& sha1) const
{
    return m_directory + u'/' + sha1.left(2) + u'/' + sha1.mid(2);
}

} // namespace documents
