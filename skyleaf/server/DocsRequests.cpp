#include "server/DocsRequests.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QUrl>
#include <QUrlQuery>

#include <algorithm>

namespace docsrequests {
namespace {

bool isAllDigits(const QString& text)
{
    return !text.isEmpty() &&
           std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

} // namespace

const QString versionCheck = QStringLiteral("vcs");
const QString packageInfo = QStringLiteral("get_res_pck_info");
const QString envConfig = QStringLiteral("get_env_config");
const QString ssrContent = QStringLiteral("get_ssr_content");
const QString openFile = QStringLiteral("open_file");
const QString dataUpgrade = QStringLiteral("data_upgrade");
const QString downloadFile = QStringLiteral("download_file");

QString versionCheckPath(const QString& key, const QString& officeType)
{
    const QString path = QStringLiteral("/api/v3/office/prefetch/vcs/") + key;
    return isAllDigits(key) ? path + QStringLiteral("?office_type=") + officeType : path;
}

QString packageInfoPath()
{
    return QStringLiteral("/api/quill/office/prefetch/config");
}

QString officeConfigPath(const QString& fileId, bool ssr)
{
    const QString path =
        ssr ? QStringLiteral("/office-config/%1?part=file_info,config,ssr")
            : QStringLiteral("/office-config/%1?part=file_info,font_name_map,config,plugin_config");
    return path.arg(fileId);
}

QString preopenPath(const QString& fileId, const QString& packageName)
{
    return QStringLiteral("/api/v3/office/file/%1/preopen/%2").arg(fileId, packageName);
}

QString withStartTime(const QString& path, const QString& startTime)
{
    return startTime.isEmpty() ? path : path + QStringLiteral("&startTime=") + startTime;
}

QString officeConfigRoute()
{
    return QStringLiteral("/office-config/:id");
}

QString preopenRoute(const QString& packageName)
{
    return QStringLiteral("/api/v3/office/file/:id/preopen/") + packageName;
}

QByteArray packageInfoBody(const QString& packageName, const QString& frontVer, qint64 buildTime)
{
    QJsonObject package{{QStringLiteral("office_type"), packageName}};
    if (!frontVer.isEmpty())
        package.insert(QStringLiteral("front_ver"), frontVer);
    if (buildTime > 0)
        package.insert(QStringLiteral("build_time"), buildTime);
    return QJsonDocument(QJsonArray{package}).toJson(QJsonDocument::Compact);
}

QJsonObject preopenBody(const QString& frontVer, bool mustUpgrade, const QString& connId)
{
    QJsonObject body;
    if (!mustUpgrade)
        body.insert(QStringLiteral("front_ver"), frontVer);
    body.insert(QStringLiteral("connid"), connId);
    return body;
}

QString startTimeOf(const QString& pageUrl)
{
    const QUrl url(pageUrl);
    if (pageUrl.isEmpty() || !url.isValid())
        return {};
    return QUrlQuery(url).queryItemValue(QStringLiteral("startTime"));
}

} // namespace docsrequests
