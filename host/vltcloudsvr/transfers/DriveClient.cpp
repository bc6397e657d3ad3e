#include "vltcloudsvr/transfers/DriveClient.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include <algorithm>

namespace vlt::cloudsvr {
namespace {

constexpr std::size_t longestAnswer = 16UL * 1024 * 1024;
constexpr std::size_t longestRefusal = 64UL * 1024;
constexpr int statusOk = 200;
constexpr int statusCreated = 201;
constexpr int statusPartial = 206;
constexpr int statusTimeout = 408;
constexpr int statusTooMany = 429;
constexpr int firstServerError = 500;
constexpr int statusDiskFull = 507;
constexpr double largestSize = 9007199254740992.0; // exact as a JSON number
constexpr int finishSeconds = 600;                 // the service may read the whole file once more

const QString prefix = QStringLiteral("/api/v1/drive");

std::string pathOf(const QString& encoded)
{
    return QString(prefix + encoded).toStdString();
}

/** One step of a path, or one value of a query. */
QString encoded(const QString& text)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

DriveError garbage(const QString& text)
{
    return {DriveError::Kind::Garbage, 0, QStringLiteral("badAnswer"), text, -1};
}

DriveOutcome<DriveItem> itemOf(const QJsonObject& object)
{
    DriveItem item;
    item.id = object.value(QStringLiteral("id")).toString();
    item.name = object.value(QStringLiteral("name")).toString();
    const QString type = object.value(QStringLiteral("type")).toString();
    item.isFolder = type == QLatin1String("folder");
    item.sha1 = object.value(QStringLiteral("sha1")).toString();
    const double size = object.value(QStringLiteral("size")).toDouble(item.isFolder ? 0 : -1);
    if (item.id.isEmpty() || (!item.isFolder && type != QLatin1String("file")) || size < 0 ||
        size > largestSize)
        return garbage(QStringLiteral("the service described an item in a way that makes no sense"));
    item.size = qint64(size);
    return item;
}

DriveOutcome<DriveItem> itemOf(const DriveOutcome<QJsonObject>& answer)
{
    return answer ? itemOf(*answer) : DriveOutcome<DriveItem>(answer.error());
}

qint64 offsetOf(const QJsonObject& object)
{
    const double offset = object.value(QStringLiteral("offset")).toDouble(-1);
    return offset < 0 || offset > largestSize ? -1 : qint64(offset);
}

/** Where the bytes begin: "bytes 5-9/10". -1 when the text says something else. */
qint64 rangeBegin(const QString& range, qint64& size)
{
    const QString unit = QStringLiteral("bytes ");
    const int dash = range.indexOf(u'-');
    const int slash = range.indexOf(u'/');
    if (!range.startsWith(unit) || dash < 0 || slash < dash)
        return -1;
    bool isNumber = false;
    bool isSize = false;
    const qint64 begin = range.mid(unit.size(), dash - unit.size()).toLongLong(&isNumber);
    size = range.midRef(slash + 1).toLongLong(&isSize);
    return isNumber && isSize && begin >= 0 && size > 0 ? begin : -1;
}

} // namespace

bool isDriveName(const QString& name)
{
    constexpr int longest = 255;
    constexpr ushort firstPlain = 0x20;
    constexpr ushort deleteCode = 0x7f;
    constexpr ushort firstPlainAfter = 0xa0;
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") &&
           name.toUtf8().size() <= longest && !name.contains(QChar(QChar::ReplacementCharacter)) &&
           std::all_of(name.begin(), name.end(), [](QChar character) {
               const ushort code = character.unicode();
               return code >= firstPlain && code != u'/' && (code < deleteCode || code >= firstPlainAfter);
           });
}

bool isSha1(const QString& text)
{
    constexpr int digits = 40;
    return text.size() == digits && std::all_of(text.begin(), text.end(), [](QChar digit) {
               return (digit >= u'0' && digit <= u'9') || (digit >= u'a' && digit <= u'f');
           });
}

DriveError DriveClient::errorOf(const HttpLink::Failure& failure)
{
    return {failure.isInterrupted ? DriveError::Kind::Interrupted : DriveError::Kind::Unreachable, 0,
            QStringLiteral("connection"), QString::fromStdString(failure.text), -1};
}

DriveError DriveClient::refusal(int status)
{
    const auto body = m_link.receiveAll(longestRefusal);
    const QJsonObject object =
        body ? QJsonDocument::fromJson(QByteArray::fromStdString(*body)).object() : QJsonObject();
    if (!body)
        m_link.close();
    const bool isServer = (status >= firstServerError && status != statusDiskFull) ||
                          status == statusTimeout || status == statusTooMany;
    DriveError error{isServer ? DriveError::Kind::Server : DriveError::Kind::Refused, status,
                     object.value(QStringLiteral("result")).toString(),
                     object.value(QStringLiteral("msg")).toString(), offsetOf(object)};
    const bool isOfHttp = status >= 400;
    if (!isOfHttp)
        error.kind = DriveError::Kind::Garbage;
    if (error.text.isEmpty())
        error.text = QStringLiteral("the documents service answered %1").arg(status);
    return error;
}

DriveOutcome<QJsonObject> DriveClient::answer()
{
    const auto head = m_link.receive();
    if (!head)
        return errorOf(head.error());
    if (head->status != statusOk && head->status != statusCreated)
        return refusal(head->status);
    const auto body = m_link.receiveAll(longestAnswer);
    if (!body)
        return errorOf(body.error());
    const QJsonDocument document =
        QJsonDocument::fromJson(QByteArray::fromRawData(body->data(), int(body->size())));
    if (!document.isObject())
        return garbage(QStringLiteral("the service's answer is not a JSON object"));
    return document.object();
}

DriveOutcome<QJsonObject> DriveClient::ask(const HttpLink::Request& request, const QByteArray& body)
{
    HttpLink::Request sent = request;
    sent.length = body.size();
    const auto isSent = m_link.send(sent);
    if (!isSent)
        return errorOf(isSent.error());
    if (!body.isEmpty()) {
        const auto isBodySent = m_link.sendBody(body.constData(), std::size_t(body.size()));
        if (!isBodySent && isBodySent.error().isInterrupted) {
            m_link.close();
            return errorOf(isBodySent.error());
        }
        if (!isBodySent) { // perhaps it was refused before it was read
            const DriveOutcome<QJsonObject> early = answer();
            m_link.close();
            return early ? DriveOutcome<QJsonObject>(errorOf(isBodySent.error())) : early;
        }
    }
    return answer();
}

DriveOutcome<DriveItem> DriveClient::makeFolder(const QString& groupId, const QString& parentId,
                                                const QString& name)
{
    const QJsonObject wish{{QStringLiteral("parentid"), parentId}, {QStringLiteral("name"), name}};
    return itemOf(ask({"POST", pathOf(QStringLiteral("/groups/%1/folders").arg(encoded(groupId))),
                       "Content-Type: application/json\r\n"},
                      QJsonDocument(wish).toJson(QJsonDocument::Compact)));
}

DriveOutcome<DriveItem> DriveClient::item(const QString& id)
{
    return itemOf(ask({"GET", pathOf(QStringLiteral("/items/") + encoded(id))}));
}

DriveOutcome<QVector<DriveItem>> DriveClient::list(const QString& groupId, const QString& folderId)
{
    const auto answered = ask(
        {"GET", pathOf(QStringLiteral("/groups/%1/folders/%2").arg(encoded(groupId), encoded(folderId)))});
    if (!answered)
        return answered.error();
    const QJsonValue array = answered->value(QStringLiteral("items"));
    if (!array.isArray())
        return garbage(QStringLiteral("the service did not say what the folder holds"));
    QVector<DriveItem> items;
    for (const QJsonValue& value : array.toArray()) {
        const DriveOutcome<DriveItem> item = itemOf(value.toObject());
        if (!item)
            return item.error();
        items.append(*item);
    }
    return items;
}

DriveOutcome<DriveItem> DriveClient::put(const UploadTarget& target, const QByteArray& bytes,
                                         const QString& sha1)
{
    QString query = QStringLiteral("?sha1=") + sha1;
    if (!target.fileId.isEmpty())
        query += QStringLiteral("&fileid=") + encoded(target.fileId);
    if (!target.name.isEmpty())
        query += QStringLiteral("&name=") + encoded(target.name);
    return itemOf(ask({"PUT",
                       pathOf(QStringLiteral("/groups/%1/folders/%2/files")
                                  .arg(encoded(target.groupId), encoded(target.parentId)) +
                              query),
                       "Content-Type: application/octet-stream\r\n"},
                      bytes));
}

DriveOutcome<UploadSession> DriveClient::beginUpload(const UploadTarget& target, qint64 size,
                                                     const QString& sha1)
{
    const QJsonObject wish{
        {QStringLiteral("groupid"), target.groupId},
        {QStringLiteral("parentid"), target.parentId},
        {QStringLiteral("fileid"), target.fileId.isEmpty() ? QStringLiteral("0") : target.fileId},
        {QStringLiteral("name"), target.name},
        {QStringLiteral("size"), size},
        {QStringLiteral("sha1"), sha1}};
    const auto answered =
        ask({"POST", pathOf(QStringLiteral("/uploads")), "Content-Type: application/json\r\n"},
            QJsonDocument(wish).toJson(QJsonDocument::Compact));
    if (!answered)
        return answered.error();
    const UploadSession session{answered->value(QStringLiteral("uploadid")).toString(), offsetOf(*answered)};
    if (session.id.isEmpty() || session.offset < 0 || session.offset > size)
        return garbage(QStringLiteral("the service began the upload in a way that makes no sense"));
    return session;
}

DriveOutcome<HttpLink::Done> DriveClient::beginBytes(const UploadSession& session, qint64 count)
{
    const auto isSent = m_link.send(
        {"PUT", pathOf(QStringLiteral("/uploads/%1?offset=%2").arg(encoded(session.id)).arg(session.offset)),
         "Content-Type: application/octet-stream\r\n", count});
    return isSent ? DriveOutcome<HttpLink::Done>(*isSent)
                  : DriveOutcome<HttpLink::Done>(errorOf(isSent.error()));
}

DriveOutcome<qint64> DriveClient::endBytes()
{
    const auto answered = answer();
    if (!answered)
        return answered.error();
    const qint64 offset = offsetOf(*answered);
    return offset < 0 ? DriveOutcome<qint64>(garbage(QStringLiteral("the service did not say what arrived")))
                      : DriveOutcome<qint64>(offset);
}

DriveOutcome<DriveItem> DriveClient::finishUpload(const QString& uploadId)
{
    return itemOf(ask(
        {"POST", pathOf(QStringLiteral("/uploads/%1/finish").arg(encoded(uploadId))), {}, 0, finishSeconds}));
}

void DriveClient::dropUpload(const QString& uploadId)
{
    constexpr int shortSeconds = 3;
    ask({"DELETE", pathOf(QStringLiteral("/uploads/") + encoded(uploadId)), {}, 0, shortSeconds});
}

DriveOutcome<DriveClient::Content> DriveClient::beginContent(const QString& fileId, const QString& version,
                                                             qint64 from, const QString& sha1)
{
    QString path = QStringLiteral("/files/%1/content").arg(encoded(fileId));
    if (!version.isEmpty())
        path += QStringLiteral("?version=") + encoded(version);
    std::string headers;
    if (from > 0)
        headers =
            "Range: bytes=" + std::to_string(from) + "-\r\nIf-Range: \"" + sha1.toStdString() + "\"\r\n";
    const auto isSent = m_link.send({"GET", pathOf(path), headers});
    if (!isSent)
        return errorOf(isSent.error());
    const auto head = m_link.receive();
    if (!head)
        return errorOf(head.error());
    if (head->status != statusOk && head->status != statusPartial)
        return refusal(head->status);
    Content content;
    const QString tag = QString::fromStdString(head->etag);
    content.sha1 = tag.mid(1, tag.size() - 2);
    content.size = head->length;
    if (head->status == statusPartial)
        content.from = rangeBegin(QString::fromStdString(head->contentRange), content.size);
    if (head->length < 0 || content.from < 0 || content.from + head->length != content.size ||
        !isSha1(content.sha1)) {
        m_link.close();
        return garbage(QStringLiteral("the service did not say what the file's content is"));
    }
    return content;
}

} // namespace vlt::cloudsvr
