#include "vltcloudsvr/plugins/PackageDescription.h"

#include "vltcloudsvr/common/InstalledPlugins.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace vlt::cloudsvr {
namespace {

constexpr qint64 largestPackage = 1024LL * 1024 * 1024;
constexpr int hashSize = 32;

} // namespace

QUrl packageUrl(const QString& apiUrl, const QString& pluginName)
{
    const QUrl api(apiUrl, QUrl::StrictMode);
    if (!api.isValid() || api.host().isEmpty() || !isInstallableName(pluginName))
        return {};
    const QString base = apiUrl.endsWith(u'/') ? apiUrl.chopped(1) : apiUrl;
    return QUrl(base + QStringLiteral("/api/v3/office/package/") + pluginName, QUrl::StrictMode);
}

Result<PackageDescription> parsePackageDescription(const QByteArray& json, const QString& pluginName,
                                                   const QUrl& base)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isObject())
        return Error{QStringLiteral("the package's description is not a JSON object")};
    const QJsonObject members = document.object();
    const QUrl relative(members.value(QStringLiteral("url")).toString(), QUrl::StrictMode);
    PackageDescription package;
    package.version = members.value(QStringLiteral("version")).toString();
    package.url = base.resolved(relative);
    package.size = qint64(members.value(QStringLiteral("size")).toDouble());
    package.sha256 = QByteArray::fromHex(members.value(QStringLiteral("sha256")).toString().toLatin1());

    if (members.value(QStringLiteral("name")).toString() != pluginName)
        return Error{QStringLiteral("the package is of another plug-in")};
    if (!isInstallableName(package.version))
        return Error{QStringLiteral("the package's version cannot be used: \"%1\"").arg(package.version)};
    if (relative.isEmpty() || !package.url.isValid() || package.url.scheme() != base.scheme() ||
        package.url.authority() != base.authority())
        return Error{QStringLiteral("the package's URL cannot be used")};
    if (package.size <= 0 || package.size > largestPackage)
        return Error{QStringLiteral("the package's size cannot be used")};
    if (package.sha256.size() != hashSize)
        return Error{QStringLiteral("the package's hash cannot be used")};
    return package;
}

} // namespace vlt::cloudsvr
