#pragma once

#include <QString>
#include <QVariantMap>

/**
 * The text that QJsonDocument writes for the map in its compact form. Values may be texts of many megabytes:
 * beside the result only small pieces are held.
 */
QString compactJson(const QVariantMap& map);
