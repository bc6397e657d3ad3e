#include "service/DriveApi.h"

#include <algorithm>

#include <QJsonArray>
#include <QJsonObject>

#include "drive/DriveNames.h"
#include "http/Replies.h"
#include "service/DocumentsApi.h"
#include "service/DriveDownload.h"
#include "service/DriveJson.h"
#include "service/JsonBody.h"

namespace documents {
namespace {

constexpr std::uint64_t wholeFileLimit = 1024ULL * 1024;

HttpReply invalid(const QString& text)
{
    return failureReply({ErrorCode::Invalid, text});
}

Answer unknown(const HttpRequest& request)
{
    return {notFound(request.target, QStringLiteral("There is no such resource."))};
}

Answer notAllowed(const HttpRequest& request, const char* allowed)
{
    return {methodNotAllowed(request.target, allowed)};
}

HttpReply done()
{
    return jsonReply(200, {{QStringLiteral("result"), QStringLiteral("ok")}});
}

} // namespace

DriveApi::DriveApi(Drive& drive, const DocumentStore& documents)
    : m_drive(drive)
    , m_documents(documents)
    , m_uploads(drive.uploads())
{
}

bool DriveApi::isStreamed(const QStringList& path)
{
    return path.size() == 2 && path.first() == QLatin1String("uploads") && driveId(path.at(1));
}

Reception DriveApi::receive(const QStringList& path, const RequestTarget& target)
{
    if (isStreamed(path))
        return m_uploads.receive(*driveId(path.at(1)), target);
    Reception reception;
    reception.limit = wholeFileLimit;
    return reception;
}

Answer DriveApi::answer(const QStringList& path, const RequestTarget& target, const HttpRequest& request)
{
    const QString kind = path.value(0);
    if (kind == QLatin1String("uploads") && path.size() == 1)
        return request.method == "POST" ? Answer{m_uploads.start(request.body)} : notAllowed(request, "POST");
    const auto id = driveId(path.value(1));
    const bool isKnown = kind == QLatin1String("groups") || kind == QLatin1String("items") ||
                         kind == QLatin1String("files") || kind == QLatin1String("uploads");
    if (!isKnown || path.size() < 2)
        return unknown(request);
    if (!id)
        return {invalid(QStringLiteral("\"%1\" is not an id.").arg(path.at(1)))};

    if (kind == QLatin1String("groups"))
        return groups(path, target, request);
    if (kind == QLatin1String("uploads"))
        return uploads(path, request);
    if (kind == QLatin1String("items") && path.size() == 2)
        return items(*id, request);
    if (kind == QLatin1String("files") && path.size() == 3)
        return files(*id, path.at(2), target, request);
    return unknown(request);
}

Answer DriveApi::groups(const QStringList& path, const RequestTarget& target, const HttpRequest& request)
{
    const qint64 group = *driveId(path.at(1));
    if (path.value(2) != QLatin1String("folders"))
        return unknown(request);
    if (path.size() == 3)
        return request.method == "POST" ? Answer{makeFolder(group, request.body)}
                                        : notAllowed(request, "POST");
    const auto folder = driveId(path.at(3));
    if (!folder)
        return {invalid(QStringLiteral("\"%1\" is not an id.").arg(path.at(3)))};
    if (path.size() == 4)
        return request.reads() ? Answer{list(group, *folder)} : notAllowed(request, "GET, HEAD");
    if (path.size() == 5 && path.at(4) == QLatin1String("files"))
        return request.method == "PUT" ? Answer{put(group, *folder, target, request.body)}
                                       : notAllowed(request, "PUT");
    return unknown(request);
}

Answer DriveApi::items(qint64 id, const HttpRequest& request)
{
    if (request.reads())
        return {item(id)};
    return request.method == "DELETE" ? Answer{remove(id)} : notAllowed(request, "GET, HEAD, DELETE");
}

Answer DriveApi::files(qint64 id, const QString& part, const RequestTarget& target,
                       const HttpRequest& request)
{
    const bool isContent = part == QLatin1String("content");
    if (!isContent && part != QLatin1String("versions"))
        return unknown(request);
    if (!request.reads())
        return notAllowed(request, "GET, HEAD");
    return {isContent ? content(id, target, request) : versions(id)};
}

Answer DriveApi::uploads(const QStringList& path, const HttpRequest& request)
{
    const qint64 id = *driveId(path.at(1));
    if (path.size() == 3 && path.at(2) == QLatin1String("finish"))
        return request.method == "POST" ? m_uploads.finish(id) : notAllowed(request, "POST");
    if (path.size() != 2)
        return unknown(request);
    if (request.reads())
        return {m_uploads.state(id)};
    return request.method == "DELETE" ? Answer{m_uploads.cancel(id)}
                                      : notAllowed(request, "GET, HEAD, PUT, DELETE");
}

HttpReply DriveApi::list(qint64 group, qint64 folder)
{
    const auto found = m_drive.store().list(group, folder);
    if (!found)
        return failureReply(found.error());
    QJsonArray path;
    for (const DriveItem& item : found->path)
        path.append(toJson(item));
    QJsonArray items;
    for (const DriveItem& item : found->items)
        items.append(toJson(item));
    if (group == 0 && folder == 0) {
        const auto documents = m_documents.list();
        for (const DocumentSummary& document : documents)
            items.append(toDriveJson(document));
    }
    return jsonReply(200, {{QStringLiteral("folder"), found->folder ? toJson(*found->folder) : QJsonValue()},
                           {QStringLiteral("path"), path},
                           {QStringLiteral("items"), items}});
}

HttpReply DriveApi::makeFolder(qint64 group, const QByteArray& body)
{
    const auto object = parseObject(body);
    if (!object)
        return failureReply(object.error());
    const auto parent = driveId(object->value(QLatin1String("parentid")).toString());
    if (!parent)
        return invalid(QStringLiteral("\"parentid\" must be a decimal text."));
    const auto made =
        m_drive.store().makeFolder(group, *parent, object->value(QLatin1String("name")).toString());
    return made ? itemReply(made->item, made->isNew ? 201 : 200) : failureReply(made.error());
}

HttpReply DriveApi::put(qint64 group, qint64 parent, const RequestTarget& target, const QByteArray& body)
{
    const QString fileText = target.queryValue(QStringLiteral("fileid"));
    const auto file = fileText.isEmpty() ? std::optional<qint64>(0) : driveId(fileText);
    const QString sha1 = target.queryValue(QStringLiteral("sha1"));
    if (!file)
        return invalid(QStringLiteral("\"fileid\" must be a decimal text."));
    if (!sha1.isEmpty() && !isSha1(sha1))
        return invalid(QStringLiteral("\"sha1\" must be 40 lower-case hexadecimal digits."));
    const FileTarget place{group, parent, *file, target.queryValue(QStringLiteral("name"))};
    return itemReply(m_drive.store().put(place, sha1, body));
}

HttpReply DriveApi::item(qint64 id)
{
    const auto found = m_drive.store().item(id);
    if (found || !m_documents.contains(QString::number(id)))
        return itemReply(found);
    const auto documents = m_documents.list();
    const auto document =
        std::find_if(documents.begin(), documents.end(),
                     [id](const DocumentSummary& summary) { return summary.id == QString::number(id); });
    return document == documents.end() ? itemReply(found) : jsonReply(200, toDriveJson(*document));
}

HttpReply DriveApi::remove(qint64 id)
{
    const auto uploads = m_drive.store().remove(id);
    if (!uploads && m_documents.contains(QString::number(id)))
        return invalid(QStringLiteral("%1 is a document, which stays.").arg(id));
    if (!uploads)
        return failureReply(uploads.error());
    for (const qint64 upload : *uploads)
        m_drive.uploads().drop(upload);
    return done();
}

HttpReply DriveApi::content(qint64 file, const RequestTarget& target, const HttpRequest& request)
{
    const QString text = target.queryValue(QStringLiteral("version"));
    const auto version = driveId(text);
    if (!text.isEmpty() && !version)
        return invalid(QStringLiteral("\"version\" must be a whole number."));
    const auto found = m_drive.store().content(file, version);
    return found ? downloadReply(*found, request) : failureReply(found.error());
}

HttpReply DriveApi::versions(qint64 file)
{
    const auto found = m_drive.store().versions(file);
    if (!found)
        return failureReply(found.error());
    QJsonArray versions;
    for (const FileVersion& version : *found)
        versions.append(toJson(version));
    return jsonReply(200, {{QStringLiteral("versions"), versions}});
}

} // namespace documents
