#include "offline/ResourceRequests.h"

#include <QByteArrayList>
#include <QMap>
#include <QUrlQuery>

namespace nresourcerequests {
namespace {

bool isSame(const QString& text, const QString& other)
{
    return text.compare(other, Qt::CaseInsensitive) == 0;
}

bool isOpenFile(const QString& kind)
{
    return isSame(kind, QStringLiteral("open_file"));
}

/** The last segment of a document's path; empty for any other path. */
QString fileIdOf(const QUrl& url)
{
    const QString path = url.path();
    return isDocumentPath(path) ? path.section(QLatin1Char('/'), -1) : QString();
}

/** Several headers of one name are the lines of one value, which the browser's side writes one by one. */
void addHeaders(QVariantMap& map, const QList<QPair<QByteArray, QByteArray>>& headers)
{
    QMap<QString, QByteArrayList> lines;
    for (const auto& [name, value] : headers)
        lines[QString::fromUtf8(name)] << value;
    for (auto header = lines.begin(); header != lines.end(); ++header)
        map.insert(header.key(), header->join('\n'));
}

} // namespace

QString requestKey(const QString& origin, const QString& kind, const QString& fileId,
                   const QString& packageName)
{
    if (kind.isEmpty())
        return {};
    if (isOpenFile(kind))
        return origin + QStringLiteral("/api/v3/office/file/%1/preopen/%2").arg(fileId, packageName);
    if (isSame(kind, QStringLiteral("get_env_config"))) {
        return origin + QStringLiteral("/office-config/%1?part=file_info,font_name_map,config,plugin_config")
                            .arg(fileId);
    }
    if (isSame(kind, QStringLiteral("get_ssr_content")))
        return origin + QStringLiteral("/office-config/%1?part=file_info,config,ssr").arg(fileId);
    return origin;
}

std::optional<ReplyRequest> parseReplyRequest(const QString& url, const QString& kind,
                                              const QString& boundConnId)
{
    const QUrlQuery query{QUrl(url)};
    const auto item = [&query](const QString& name) { return query.queryItemValue(name); };
    if (!isSame(item(QStringLiteral("proxy")), QStringLiteral("true")))
        return std::nullopt;
    if (isOpenFile(kind) && !isSame(item(QStringLiteral("connid")), boundConnId))
        return std::nullopt;
    ReplyRequest request;
    if (const unsigned timeoutMs = item(QStringLiteral("timeout")).toUInt())
        request.timeoutMs = timeoutMs;
    return request;
}

QVariantMap answer(const NDocsOfflinePage::NDOPResponseData& response)
{
    constexpr int statusOk = 200;
    const bool isGood = response.status == statusOk;
    QVariantMap headers{{QStringLiteral("x-client-proxy"), QStringLiteral("true")}};
    if (isGood)
        addHeaders(headers, response.headers);
    return {{QStringLiteral("headerMap"), headers},
            {QStringLiteral("resourceData"), isGood ? response.body : QByteArray()}};
}

bool isDocumentPath(const QString& path)
{
    return path.startsWith(QLatin1String("/p/")) || path.startsWith(QLatin1String("/l/"));
}

bool isSameDocument(const QUrl& url, const QUrl& other)
{
    const QString fileId = fileIdOf(url);
    return fileId.isEmpty() ? url.path() == other.path() : fileId == fileIdOf(other);
}

QStringList pagePrefixes(const QString& origin)
{
    return {origin + QStringLiteral("/l/"), origin + QStringLiteral("/p/"),
            origin + QStringLiteral("/office/new/")};
}

QString pageFile(const QString& packageRoot, const QString& officeType)
{
    return QStringLiteral("%1/dist_langs/zh-CN/index-%2.html").arg(packageRoot, officeType);
}

QString scriptUrlPrefix(const QString& origin)
{
    return origin + QStringLiteral("/hybrid/weboffice-static/js/");
}

QString scriptLocalPrefix(const QString& packageRoot)
{
    return packageRoot + QStringLiteral("/weboffice-static/js/");
}

} // namespace nresourcerequests
