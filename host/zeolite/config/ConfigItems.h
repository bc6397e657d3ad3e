#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QMap>
#include <QPair>
#include <QString>

/** The items of the configuration centre by (group, item). */
using ConfigItems = QMap<QPair<int, int>, QJsonObject>;

struct ConfigItemsResult
{
    ConfigItems items;
    QString error; //!< empty on success; else the items are empty
};

/**
 * Reads the member "configCentre" of a host file: {"<group>": {"<item>": object}}, both numbers in decimal. A
 * file without that member has no items.
 */
ConfigItemsResult parseConfigItems(const QByteArray& hostFile);
