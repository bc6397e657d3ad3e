#include "ncefpreload/FrontEnds.h"

#include "ncefpreload/NCefPreload.h"
#include "nrt/files.h"
#include "nrt/kcc.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NDomainMgr.h"
#include "zeolite/NPlugin.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMap>

#include <optional>

namespace ncefpreload {

namespace {

/** The packages of the kinds of document. */
QString pluginOf(const QString& officeType)
{
    static const QMap<QString, QString> plugins{
        {QStringLiteral("d"), QStringLiteral("quilldb")},
        {QStringLiteral("s"), QStringLiteral("quillvs")},
        {QStringLiteral("w"), QStringLiteral("quillword")},
        {QStringLiteral("p"), QStringLiteral("quillvpp")},
        {QStringLiteral("f"), QStringLiteral("quillpdf")},
        {QStringLiteral("o"), QStringLiteral("quill")},
        {QStringLiteral("k"), QStringLiteral("quillnsheet")},
        {QStringLiteral("mo"), QStringLiteral("quillmotl")},
    };
    return plugins.value(officeType);
}

std::optional<QByteArray> contentOf(const QString& path)
{
    constexpr qint64 largest = 64 * 1024;
    const nrt::files::Reading file = nrt::files::read(path, largest);
    return file ? std::optional(file.bytes) : std::nullopt;
}

QString packageOf(const QString& officeType)
{
    NCoreApplication* const core = NCoreApplication::instance();
    NPluginManager* const plugins = core ? core->getPluginManager() : nullptr;
    const QString name = pluginOf(officeType);
    if (!plugins || name.isEmpty())
        return {};
    NPluginUpgradeManager* const upgrades = plugins->getPluginUpgradeManager();
    const NPluginPtr upgraded = upgrades ? upgrades->getPlugin(name) : nullptr;
    const QString path = upgraded && upgraded->load() == NPlugin::Loaded ? upgraded->localPath() : QString();
    return path.isEmpty() ? plugins->getPluginPath(name) : path;
}

QString versionOf(const QString& package)
{
    if (package.isEmpty())
        return {};
    return QString::fromUtf8(contentOf(package + QStringLiteral("/version")).value_or(QByteArray()))
        .trimmed();
}

QVariant injectArrayOf(const QString& package)
{
    const std::optional<QByteArray> text = contentOf(package + QStringLiteral("/inject.json"));
    return text ? QVariant(QJsonDocument::fromJson(*text).array()) : QVariant();
}

QString originOf(const QUrl& url)
{
    return url.adjusted(QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment | QUrl::RemoveUserInfo)
        .toString(QUrl::FullyEncoded);
}

} // namespace

QString mostUsedOfficeType(const QVariantMap& usage)
{
    QMap<QString, qint64> counts;
    for (const QVariant& day : usage) {
        const QVariantMap kinds = day.toMap();
        for (auto kind = kinds.constBegin(); kind != kinds.constEnd(); ++kind) {
            if (!pluginOf(kind.key()).isEmpty())
                counts[kind.key()] += kind.value().toLongLong();
        }
    }
    QString most;
    for (auto kind = counts.constBegin(); kind != counts.constEnd(); ++kind) {
        if (kind.value() > counts.value(most, 0))
            most = kind.key();
    }
    return most;
}

FrontEnd frontEndToPrepare()
{
    NCoreApplication* const core = NCoreApplication::instance();
    const NDomainMgr* const domains = core ? core->getDomainMgr() : nullptr;
    FrontEnd frontEnd;
    frontEnd.domain = domains ? domains->getDomainUrl(QStringLiteral("quill")) : QString();
    const QString officeType = mostUsedOfficeType(nrt::kcc::value(usageKey()).toMap());
    const QString origin = originOf(QUrl(frontEnd.domain));
    if (origin.isEmpty() || officeType.isEmpty())
        return {};
    frontEnd.officeType = officeType;
    const QString pages = QStringLiteral("/dist_langs/zh-CN/");
    const QString page = QStringLiteral("index-%1.html").arg(officeType);
    frontEnd.url = QUrl(origin + pages + page);

    const QString package = packageOf(officeType);
    if (!QFileInfo(package + pages + page).isFile())
        return frontEnd;
    frontEnd.version = versionOf(package);
    if (!frontEnd.isLocal())
        return frontEnd;
    const QString scripts = QStringLiteral("/weboffice-static/js/");
    frontEnd.directories = {{origin + pages, package + pages},
                            {origin + QStringLiteral("/hybrid") + scripts, package + scripts}};
    frontEnd.injectArray = injectArrayOf(package);
    return frontEnd;
}

QString versionInForce(const QString& officeType)
{
    return versionOf(packageOf(officeType));
}

} // namespace ncefpreload
