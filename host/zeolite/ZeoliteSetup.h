#pragma once

#include <QMap>
#include <QSet>
#include <QString>

/** How a program that carries the shared services sets them up. */
namespace zeolite {

struct PluginDirectories
{
    QString path;
    QString upgradePath; //!< empty: never upgraded
};

struct Setup
{
    /** The data-collection events go to "events.jsonl" in it; empty: they are kept in memory only. */
    QString dataDir;
    /** Without it there is no data collection: getDcInfo() answers null and no event file is written. */
    bool collectsData = true;
    /** Empty: no log file. */
    QString logFile;
    /** JSON file whose member "configCentre" feeds the configuration centre; watched. Empty: nothing but
     * `set`. */
    QString hostFile;
    /** Groups of the configuration centre that finish initialising only when told to. */
    QSet<int> delayedGroups;

    QMap<QString, QString> domains;
    QString mainDomain;
    QString documentsServiceHost;
    bool intranet = false;

    quint32 capabilities = 0;
    QMap<QString, PluginDirectories> plugins;

    /** Empty: the default with the application version of the runtime. */
    QString userAgent;
    QString scriptCoreUserAgent;
    QString debugInfo;
};

} // namespace zeolite
