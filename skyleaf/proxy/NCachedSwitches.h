#pragma once

#include <QString>
#include <QVariantMap>

/** Switches of the configuration centre that keep their last value on this machine. User-interface thread. */
namespace ncachedswitches {

enum class Store { Accelerate, OfflineEdit };

/** What the configuration centre says now about the switches of a store; empty without it. */
QVariantMap entry(Store store);

/**
 * The switch of that name: the bool of the entry, which is then kept, else the kept one, else the default.
 */
bool read(const QVariantMap& entry, Store store, const QString& name, bool defaultState);

} // namespace ncachedswitches
