#include "service/PackageDirectory.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QJsonObject>
#include <QRegularExpression>

#include "http/Replies.h"
#include "service/StaticSite.h"

namespace documents {
namespace {

/** What cannot lead to another directory. */
bool isPlainName(const QString& text)
{
    static const QRegularExpression pattern(QStringLiteral("^[A-Za-z0-9][A-Za-z0-9._+-]{0,99}$"));
    return pattern.match(text).hasMatch() && !text.endsWith(u'\n');
}

QByteArray tagOf(const QFile& file)
{
    return entityTag(file.size(), file.fileTime(QFileDevice::FileModificationTime).toMSecsSinceEpoch());
}

HttpReply noPackage(const QByteArray& target, const QString& plugin, const QString& version)
{
    return notFound(target,
                    QStringLiteral("There is no package \"%1\" of version \"%2\".").arg(plugin, version));
}

} // namespace

PackageDirectory::PackageDirectory(QString directory)
    : m_directory(std::move(directory))
{
}

QString PackageDirectory::pathOf(const QString& plugin, const QString& version) const
{
    if (m_directory.isEmpty() || !isPlainName(plugin) || !isPlainName(version))
        return {};
    const QString path = QStringLiteral("%1/%2-%3.zip").arg(m_directory, plugin, version);
    return QFileInfo(path).isFile() ? path : QString();
}

std::optional<QByteArray> PackageDirectory::checksum(QFile& file, const QByteArray& tag)
{
    Checksum& known = m_checksums[file.fileName()];
    if (known.tag == tag)
        return known.sha256;
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!hash.addData(&file))
        return std::nullopt;
    known = {tag, hash.result().toHex()};
    return known.sha256;
}

HttpReply PackageDirectory::description(const QString& plugin, const QString& version,
                                        const QByteArray& target)
{
    QFile file(pathOf(plugin, version));
    const auto sha256 =
        file.open(QIODevice::ReadOnly) ? checksum(file, tagOf(file)) : std::optional<QByteArray>();
    if (!sha256)
        return noPackage(target, plugin, version);
    return jsonReply(200, {{QStringLiteral("name"), plugin},
                           {QStringLiteral("version"), version},
                           {QStringLiteral("url"),
                            QStringLiteral("/api/v3/office/package/%1/%2.zip").arg(plugin, version)},
                           {QStringLiteral("size"), file.size()},
                           {QStringLiteral("sha256"), QString::fromLatin1(*sha256)}});
}

HttpReply PackageDirectory::file(const QString& plugin, const QString& version,
                                 const HttpRequest& request) const
{
    const auto file = std::make_shared<QFile>(pathOf(plugin, version));
    if (!file->open(QIODevice::ReadOnly))
        return noPackage(request.target, plugin, version);
    const QByteArray tag = tagOf(*file);
    HttpReply reply;
    reply.contentType = mimeTypeOf(file->fileName());
    reply.headers = {{"ETag", tag}, {"Cache-Control", "no-cache"}};
    if (listsTag(request.ifNoneMatch, tag)) {
        reply.status = 304;
    } else {
        reply.fileSize = file->size();
        reply.file = file;
    }
    return reply;
}

} // namespace documents
