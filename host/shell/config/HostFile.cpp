#include "shell/config/HostFile.h"

#include "shell/config/ObjectReader.h"
#include "shell/config/UserMembers.h"

#include "nrt/files.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSet>
#include <QUrl>

namespace shell {

namespace {

constexpr qint64 largestHostFile = 32LL << 20; //!< bytes

const QStringList& siteKeys()
{
    static const QStringList keys = {QStringLiteral("quill"), QStringLiteral("drive")};
    return keys;
}

bool isWebUrl(const QString& text)
{
    const QUrl url(text, QUrl::StrictMode);
    return url.isValid() && !url.host().isEmpty() &&
           (url.scheme() == QLatin1String("https") || url.scheme() == QLatin1String("http"));
}

/** "host:port", the host in brackets when it has colons itself. */
bool isEndpoint(const QString& text)
{
    static const QRegularExpression form(
        QStringLiteral("^(\\[[0-9A-Fa-f:.]+\\]|[^:\\s\\[\\]]+):(\\d{1,5})$"));
    const QRegularExpressionMatch match = form.match(text);
    const int port = match.captured(2).toInt();
    return match.hasMatch() && port > 0 && port <= 65535;
}

void readTextMap(ObjectReader& file, const QString& member, QMap<QString, QString>& target,
                 bool (*isValid)(const QString&), const QString& wanted)
{
    file.readObject(member, [&](ObjectReader& reader) {
        reader.forEach([&](const QString& name, const QJsonValue& value) {
            if (value.isNull())
                target.remove(name);
            else if (value.isString() && isValid(value.toString()))
                target.insert(name, value.toString());
            else
                reader.fail(name, wanted);
        });
    });
}

void readBoolMap(ObjectReader& file, const QString& member, QMap<QString, bool>& target)
{
    file.readObject(member, [&](ObjectReader& reader) {
        reader.forEach([&](const QString& name, const QJsonValue& value) {
            if (value.isBool())
                target.insert(name, value.toBool());
            else
                reader.fail(name, QStringLiteral("must be true or false"));
        });
    });
}

void readConfigGroup(ObjectReader& centre, const QString& group, QMap<QString, QJsonObject>& target)
{
    centre.readObject(group, [&](ObjectReader& items) {
        items.forEach([&](const QString& item, const QJsonValue& value) {
            bool isNumber = false;
            item.toInt(&isNumber);
            if (!isNumber)
                items.fail(item, QStringLiteral("must be named by the number of a configuration item"));
            else if (!value.isObject())
                items.fail(item, QStringLiteral("must be an object"));
            else
                target.insert(item, value.toObject());
        });
    });
}

void readConfigCentre(ObjectReader& file, HostFile& host)
{
    file.readObject(QStringLiteral("configCentre"), [&](ObjectReader& centre) {
        centre.forEach([&](const QString& group, const QJsonValue&) {
            bool isNumber = false;
            group.toInt(&isNumber);
            if (isNumber)
                readConfigGroup(centre, group, host.configCentre[group]);
            else
                centre.fail(group, QStringLiteral("must be named by the number of a configuration group"));
        });
    });
}

void readSettings(ObjectReader& file, HostFile& host)
{
    file.readObject(QStringLiteral("settings"), [&](ObjectReader& settings) {
        settings.forEach([&](const QString& name, const QJsonValue& value) {
            if (!name.contains(QLatin1Char('/')))
                settings.fail(name, QStringLiteral("must be named \"group/key\""));
            else
                host.settings.insert(name, value.toVariant());
        });
    });
}

QString absolute(const QString& path, const QString& baseDir)
{
    return path.isEmpty() ? path : QDir::cleanPath(QDir(baseDir).absoluteFilePath(path));
}

void readPlugins(ObjectReader& file, HostFile& host, const QString& baseDir)
{
    file.readObject(QStringLiteral("plugins"), [&](ObjectReader& plugins) {
        plugins.forEach([&](const QString& name, const QJsonValue&) {
            plugins.readObject(name, [&](ObjectReader& reader) {
                HostPlugin plugin;
                reader.read(QStringLiteral("path"), plugin.path);
                reader.read(QStringLiteral("upgradePath"), plugin.upgradePath);
                host.plugins.insert(name,
                                    {absolute(plugin.path, baseDir), absolute(plugin.upgradePath, baseDir)});
            });
        });
    });
}

void readUser(ObjectReader& file, HostFile& host, const QString& baseDir)
{
    file.readObject(QStringLiteral("user"), [&](ObjectReader& user) {
        readUserMembers(user, host.user);
        host.user.localDataDir = absolute(host.user.localDataDir, baseDir);
        host.user.cacheRoot = absolute(host.user.cacheRoot, baseDir);
    });
}

void readApplication(ObjectReader& file, HostFile& host)
{
    file.readObject(QStringLiteral("application"), [&](ObjectReader& application) {
        application.read(QStringLiteral("name"), host.applicationName);
        application.read(QStringLiteral("version"), host.applicationVersion);
        application.read(QStringLiteral("channel"), host.channel);
    });
}

Error failure(const QString& text)
{
    return {QStringLiteral("host file: ") + text};
}

} // namespace

QMap<QString, QString> HostFile::defaultDomains()
{
    const QString docs = QStringLiteral("https://docs.skyleaf.test");
    return {{QStringLiteral("quill"), docs},
            {QStringLiteral("quill_api"), docs},
            {QStringLiteral("quill_api_spec"), docs},
            {QStringLiteral("drive"), QStringLiteral("https://drive.skyleaf.test")},
            {QStringLiteral("root"), QStringLiteral("https://skyleaf.test")}};
}

QMap<QString, QString> HostFile::defaultResolve()
{
    const QString secure = QStringLiteral("127.0.0.1:18443");
    const QString plain = QStringLiteral("127.0.0.1:18080");
    return {{QStringLiteral("docs.skyleaf.test:443"), secure},
            {QStringLiteral("docs.skyleaf.test:80"), plain},
            {QStringLiteral("drive.skyleaf.test:443"), secure},
            {QStringLiteral("drive.skyleaf.test:80"), plain}};
}

HostUser HostFile::defaultUser()
{
    HostUser user;
    user.userId = QStringLiteral("demo");
    user.loggedIn = true;
    user.sessionKey = QStringLiteral("demo-session");
    return user;
}

QStringList HostFile::scriptOrigins() const
{
    QStringList origins;
    for (const QString& key : siteKeys()) {
        const QUrl url(domains.value(key));
        if (url.isEmpty())
            continue;
        const QString origin =
            url.toString(QUrl::RemoveUserInfo | QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment);
        if (!origins.contains(origin))
            origins.append(origin);
    }
    return origins;
}

QStringList HostFile::interceptedHosts() const
{
    // Those of the suite itself come before whatever else is named.
    QStringList urls;
    const QMap<QString, QString> own = defaultDomains();
    for (auto domain = domains.begin(); domain != domains.end(); ++domain) {
        if (own.contains(domain.key()))
            urls.prepend(domain.value());
        else
            urls.append(domain.value());
    }
    QStringList hosts;
    for (const QString& text : qAsConst(urls)) {
        const QUrl url(text);
        if (hosts.size() == mostInterceptedHosts)
            break;
        if (url.scheme() == QLatin1String("https") && !hosts.contains(url.host()))
            hosts.append(url.host());
    }
    return hosts;
}

Result<HostFile> parseHostFile(const QByteArray& text, const QString& baseDir)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(text, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        return failure(
            QStringLiteral("no JSON: %1 at byte %2").arg(parseError.errorString()).arg(parseError.offset));
    }
    if (!document.isObject())
        return failure(QStringLiteral("must be a JSON object"));

    HostFile host;
    ObjectReader file(document.object(), QString());
    readTextMap(file, QStringLiteral("domains"), host.domains, isWebUrl,
                QStringLiteral("must be an http or https URL"));
    readTextMap(file, QStringLiteral("resolve"), host.resolve, isEndpoint,
                QStringLiteral("must be \"address:port\""));
    file.read(QStringLiteral("mainDomain"), host.mainDomain);
    file.read(QStringLiteral("documentsServiceHost"), host.documentsServiceHost);
    file.read(QStringLiteral("intranet"), host.intranet);
    file.read(QStringLiteral("telemetry"), host.telemetry);
    readConfigCentre(file, host);
    file.readObject(QStringLiteral("debugInfo"), [&](ObjectReader& reader) {
        reader.forEach(
            [&](const QString& name, const QJsonValue& value) { host.debugInfo.insert(name, value); });
    });
    readBoolMap(file, QStringLiteral("productSwitches"), host.productSwitches);
    readBoolMap(file, QStringLiteral("features"), host.features);
    readSettings(file, host);
    file.read(QStringLiteral("capabilities"), host.capabilities);
    readUser(file, host, baseDir);
    readPlugins(file, host, baseDir);
    readApplication(file, host);

    const QString error = file.finish();
    if (!error.isEmpty())
        return failure(error);
    return host;
}

Result<HostFile> loadHostFile(const QString& path)
{
    const nrt::files::Reading file = nrt::files::read(path, largestHostFile);
    if (!file)
        return failure(QStringLiteral("cannot read %1: %2").arg(path, file.reason));

    const QFileInfo info(path);
    const Result<HostFile> parsed = parseHostFile(file.bytes, info.absolutePath());
    if (!parsed)
        return Error{parsed.error().text + QStringLiteral(" (%1)").arg(path)};
    HostFile host = *parsed;
    host.path = info.absoluteFilePath();
    return host;
}

} // namespace shell
