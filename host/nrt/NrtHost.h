#pragma once

#include <QMap>
#include <QSet>
#include <QString>
#include <QVariant>

/** How a program that carries the runtime sets it up. Any thread. */
namespace nrt::host {

struct Setup
{
    /** Where the user's data lies: the key-value store, the settings and the maker's home. */
    QString dataDir;
    QString installRoot;
    /** Resource directories of modules lie directly below it. */
    QString resourceRoot;
    QString libraryDir;

    QMap<QString, bool> productSwitches;
    /** A feature by name; the values of a feature by "feature/key". */
    QMap<QString, bool> features;
    /** What settings stores answer for "group/key" (nested groups joined by "/") when they hold no value. */
    QMap<QString, QVariant> settings;
    /** Text values by "name/key". */
    QMap<QString, QString> productConfig;
    QSet<QString> hiddenEntries;

    QString applicationName;
    QString applicationVersion;
    QString channel;
};

/**
 * Replaces the set-up; directories left empty get their defaults (see `nrt::dirs`). Stores opened from now on
 * lie in the new data directory; the key-value store is read again.
 */
void configure(Setup setup);

void setProductSwitch(const QString& name, bool on);
void setFeature(const QString& name, bool on);

} // namespace nrt::host
