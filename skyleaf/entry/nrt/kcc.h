#pragma once

#include <QString>
#include <QVariant>

/**
 * The key-value store of the runtime: one per user, on disk. A written value survives a kill of the process.
 * Any thread. Values keep their type (bool, int, text, date, map, list).
 */
namespace nrt::kcc {

/** The prefix of all keys of plug-ins, with its trailing slash. */
QString pluginPerfix();

/** The value as this process last saw it; `defaultValue` when there is none. */
QVariant value(const QString& key, const QVariant& defaultValue = {});
/** As `value`, after taking in what other processes wrote. */
QVariant flushRead(const QString& key, const QVariant& defaultValue = {});

/** Stores the value; on disk when the call returns. A failed write is logged and the value kept in memory. */
void setValue(const QString& key, const QVariant& value);
/** As `setValue`. */
void flushWrite(const QString& key, const QVariant& value);

} // namespace nrt::kcc
