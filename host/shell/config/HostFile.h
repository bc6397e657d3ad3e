#pragma once

#include "shell/config/Result.h"

#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace shell {

/** The user that the shell starts with. Directories are absolute or empty. */
struct HostUser
{
    QString userId;
    bool loggedIn = false;
    QString sessionKey;
    QString cookies; //!< "name=value; …"; what is sent has the session's cookie besides
    QString localDataDir;
    QString cacheRoot;
};

/** Where a plug-in's package lies; `upgradePath` is empty when it was never upgraded. Absolute. */
struct HostPlugin
{
    QString path;
    QString upgradePath;
};

/**
 * The deployment that the shell runs in, as its host file says. The values here are those of a host file that
 * says nothing: they fit a documents server on this machine with its own default ports.
 */
struct HostFile
{
    QString path; //!< where it was read; empty when there is none

    QMap<QString, QString> domains = defaultDomains(); //!< key to http or https URL
    QMap<QString, QString> resolve = defaultResolve(); //!< "host" or "host:port" to "address:port"
    QString mainDomain = QStringLiteral("skyleaf.test");
    QString documentsServiceHost = QStringLiteral("docs.skyleaf.test");
    bool intranet = false;
    bool telemetry = true; //!< whether events are collected

    QMap<QString, QMap<QString, QJsonObject>> configCentre; //!< group, then item number

    QJsonObject debugInfo; //!< of the installation: what the people who build the front end set

    QMap<QString, bool> productSwitches;
    QMap<QString, bool> features;
    QMap<QString, QVariant> settings; //!< by "group/key"
    quint32 capabilities = 0;

    HostUser user = defaultUser();
    QMap<QString, HostPlugin> plugins;

    QString applicationName = QStringLiteral("skyleaf-shell");
    QString applicationVersion = QStringLiteral(SKYLEAF_VERSION);
    QString channel = QStringLiteral("local");

    static QMap<QString, QString> defaultDomains();
    static QMap<QString, QString> defaultResolve();
    /** Signed in, since documents are only shown to users. */
    static HostUser defaultUser();

    /** The origins ("https://docs.example.test") of the documents and drive sites; their documents get the
     * script object. */
    QStringList scriptOrigins() const;
    static constexpr int mostInterceptedHosts = 200; //!< one certificate names them all
    /** The hosts of the domains that are https, of too many those of the suite first: the shell answers
     * requests to them itself where it can. */
    QStringList interceptedHosts() const;
};

/**
 * Reads the text of a host file. Maps are merged into the defaults by name; a null takes a default away.
 * Relative directories are taken from `baseDir`. The error names the member.
 */
Result<HostFile> parseHostFile(const QByteArray& text, const QString& baseDir);

/** Reads a host file. The error starts with "host file" and names the file when it cannot be read. */
Result<HostFile> loadHostFile(const QString& path);

} // namespace shell
