#include "offline/ResourceRequests.h"

#include <QUrl>
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
    QVariantMap headers{{QStringLiteral("x-client-proxy"), QStringLiteral("true")}};
    for (const auto& [name, value] : response.headers)
        headers.insert(QString::fromUtf8(name), value);
    return {{QStringLiteral("headerMap"), headers}, {QStringLiteral("resourceData"), response.body}};
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
