#pragma once

#include <QString>
#include <QStringList>

namespace nheliostat::browser {

/** What every process of the shell wants from Chromium: no requests of its own, and no GPU when there is
 * none. */
QStringList wantedChromiumFlags(bool withoutGpu);

/**
 * Adds `wanted` to `existing` (flags separated by spaces). A switch that is already there keeps the value it
 * has, except that the names listed by --disable-features are united.
 */
QString mergedChromiumFlags(const QString& existing, const QStringList& wanted);

} // namespace nheliostat::browser
