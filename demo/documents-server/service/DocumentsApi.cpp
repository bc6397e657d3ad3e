#include "service/DocumentsApi.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "http/Replies.h"
#include "service/DocumentHtml.h"
#include "service/JsonBody.h"
#include "service/SessionCookie.h"
#include "store/OfficeTypes.h"

namespace documents {
namespace {

HttpReply apiError(int status, const QString& result, const QString& message)
{
    return jsonReply(status, {{QStringLiteral("result"), result}, {QStringLiteral("msg"), message}});
}

HttpReply badRequest(const QString& message)
{
    return apiError(400, QStringLiteral("BadRequest"), message);
}

HttpReply withSession(HttpReply reply, const HttpRequest& request)
{
    if (!hasSessionCookie(request.cookie))
        reply.headers.emplace_back("Set-Cookie", newSessionCookie());
    return reply;
}

QJsonObject fileInfo(const Document& document)
{
    return {{QStringLiteral("id"), document.id},
            {QStringLiteral("name"), document.name},
            {QStringLiteral("office_type"), document.officeType},
            {QStringLiteral("suffix"), suffixOf(document.name)},
            {QStringLiteral("version"), document.version},
            {QStringLiteral("modified"), document.modified}};
}

/** Fonts that documents name and the ones to show them with. */
QJsonObject fontNameMap()
{
    return {{QStringLiteral("Arial"), QStringLiteral("Liberation Sans")},
            {QStringLiteral("Calibri"), QStringLiteral("Carlito")},
            {QStringLiteral("Courier New"), QStringLiteral("Liberation Mono")},
            {QStringLiteral("Times New Roman"), QStringLiteral("Liberation Serif")}};
}

} // namespace

HttpReply failureReply(const Error& error)
{
    switch (error.code) {
    case ErrorCode::NotFound:
        return apiError(404, QStringLiteral("NotFound"), error.text);
    case ErrorCode::Damaged:
        return apiError(500, QStringLiteral("DocumentDamaged"), error.text);
    case ErrorCode::VersionConflict:
        return apiError(409, QStringLiteral("VersionConflict"), error.text);
    case ErrorCode::Conflict:
        return apiError(409, QStringLiteral("Conflict"), error.text);
    case ErrorCode::Invalid:
        return badRequest(error.text);
    case ErrorCode::TooLarge:
        return apiError(413, QStringLiteral("TooLarge"), error.text);
    case ErrorCode::Sha1Mismatch:
        return apiError(422, QStringLiteral("sha1Mismatch"), error.text);
    case ErrorCode::DiskFull:
        return apiError(507, QStringLiteral("DiskFull"), error.text);
    case ErrorCode::Storage:
        break;
    }
    return apiError(500, QStringLiteral("StorageFailure"), error.text);
}

DocumentsApi::DocumentsApi(DocumentStore& store, const FrontVersions& versions)
    : m_store(store)
    , m_versions(versions)
{
}

HttpReply DocumentsApi::list() const
{
    QJsonArray files;
    const auto summaries = m_store.list();
    for (const DocumentSummary& summary : summaries) {
        files.append(QJsonObject{{QStringLiteral("id"), summary.id},
                                 {QStringLiteral("name"), summary.name},
                                 {QStringLiteral("officeType"), summary.officeType},
                                 {QStringLiteral("suffix"), suffixOf(summary.name)},
                                 {QStringLiteral("version"), summary.version},
                                 {QStringLiteral("modified"), summary.modified},
                                 {QStringLiteral("size"), summary.size}});
    }
    return jsonReply(200,
                     {{QStringLiteral("result"), QStringLiteral("ok")}, {QStringLiteral("files"), files}});
}

HttpReply DocumentsApi::create(const QByteArray& body)
{
    const auto asked = parseObject(body);
    if (!asked)
        return failureReply(asked.error());
    const QJsonValue name = asked->value(QLatin1String("name"));
    if (!name.isUndefined() && !name.isString())
        return badRequest(QStringLiteral("\"name\" must be a text."));
    const auto document =
        m_store.create(asked->value(QLatin1String("officeType")).toString(), name.toString());
    if (!document)
        return failureReply(document.error());
    return jsonReply(200, {{QStringLiteral("result"), QStringLiteral("ok")},
                           {QStringLiteral("id"), document->id},
                           {QStringLiteral("name"), document->name},
                           {QStringLiteral("officeType"), document->officeType}});
}

HttpReply DocumentsApi::preopen(const QString& id, const QString& package, const HttpRequest& request) const
{
    const auto asked = parseObject(request.body);
    if (!asked)
        return failureReply(asked.error());
    const auto document = m_store.load(id);
    if (!document)
        return failureReply(document.error());
    if (officeTypeByCode(document->officeType)->package != package)
        return apiError(404, QStringLiteral("NotFound"),
                        QStringLiteral("Document %1 is not opened by the package \"%2\".").arg(id, package));

    const QJsonObject environment{
        {QStringLiteral("file_id"), document->id},
        {QStringLiteral("file_version"), QString::number(document->version)},
        {QStringLiteral("file_name"), document->name},
        {QStringLiteral("office_type"), document->officeType},
        {QStringLiteral("connid"), asked->value(QLatin1String("connid")).toString()},
        {QStringLiteral("front_ver"), frontVersionOf(*document).version}};
    return withSession(jsonReply(200, {{QStringLiteral("result"), QStringLiteral("ok")},
                                       {QStringLiteral("window.__VLTENV__"), environment},
                                       {QStringLiteral("content"), document->content}}),
                       request);
}

HttpReply DocumentsApi::save(const QString& id, const QByteArray& body)
{
    const auto change = parseObject(body);
    if (!change)
        return failureReply(change.error());
    const auto baseVersion = wholeNumber(change->value(QLatin1String("base_version")));
    const QJsonValue content = change->value(QLatin1String("content"));
    if (!baseVersion)
        return badRequest(QStringLiteral("\"base_version\" must be a whole number."));
    if (!content.isObject())
        return badRequest(QStringLiteral("\"content\" must be an object."));

    const auto saved = m_store.save(id, *baseVersion, content.toObject());
    if (saved)
        return jsonReply(200, {{QStringLiteral("result"), QStringLiteral("ok")},
                               {QStringLiteral("file_version"), saved->version}});
    if (saved.error().code != ErrorCode::VersionConflict)
        return failureReply(saved.error());
    const auto current = m_store.load(id);
    return jsonReply(409, {{QStringLiteral("result"), QStringLiteral("VersionConflict")},
                           {QStringLiteral("msg"), saved.error().text},
                           {QStringLiteral("file_version"), current ? current->version : 0}});
}

HttpReply DocumentsApi::officeConfig(const QString& id, const QStringList& parts,
                                     const HttpRequest& request) const
{
    const auto document = m_store.load(id);
    if (!document)
        return failureReply(document.error());
    const auto asked = [&parts](const char* part) {
        return parts.isEmpty() ? qstrcmp(part, "ssr") != 0 : parts.contains(QLatin1String(part));
    };

    QJsonObject reply;
    if (asked("file_info"))
        reply.insert(QStringLiteral("file_info"), fileInfo(*document));
    if (asked("font_name_map"))
        reply.insert(QStringLiteral("font_name_map"), fontNameMap());
    if (asked("config"))
        reply.insert(QStringLiteral("config"),
                     QJsonObject{{QStringLiteral("front_ver"), frontVersionOf(*document).version}});
    if (asked("plugin_config"))
        reply.insert(QStringLiteral("plugin_config"), QJsonObject());
    if (asked("ssr"))
        reply.insert(QStringLiteral("ssr"),
                     QJsonObject{{QStringLiteral("html"), contentToHtml(document->content)}});
    return withSession(jsonReply(200, reply), request);
}

HttpReply DocumentsApi::versionCheck(const QString& id) const
{
    const auto document = m_store.load(id);
    if (!document)
        return failureReply(document.error());
    return jsonReply(200, {{QStringLiteral("client_version"), frontVersionOf(*document).version},
                           {QStringLiteral("office_type"), document->officeType}});
}

HttpReply DocumentsApi::packageInfo(const QByteArray& body) const
{
    const auto asked = parseBody(body);
    if (!asked)
        return failureReply(asked.error());
    if (!asked->isArray())
        return badRequest(QStringLiteral("The body is not a JSON array."));

    QJsonArray data;
    const QJsonArray packages = asked->array();
    for (const QJsonValue entry : packages) {
        const QString package = entry.toObject().value(QLatin1String("office_type")).toString();
        if (!officeTypeByPackage(package))
            continue;
        const FrontVersion front = m_versions.of(package);
        const QJsonObject frontData{{QStringLiteral("expire_time"), front.expireTime},
                                    {QStringLiteral("front_ver"), front.version}};
        data.append(QJsonObject{{QStringLiteral("office_type"), package},
                                {QStringLiteral("must_upgrade"), front.mustUpgrade},
                                {QStringLiteral("front_data"), frontData}});
    }
    return jsonReply(200, {{QStringLiteral("result"), QStringLiteral("ok")}, {QStringLiteral("data"), data}});
}

FrontVersion DocumentsApi::frontVersionOf(const Document& document) const
{
    return m_versions.of(officeTypeByCode(document.officeType)->package, document.id);
}

} // namespace documents
