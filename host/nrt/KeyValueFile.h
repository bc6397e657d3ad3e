#pragma once

#include "nrt/FileIdentity.h"

#include <mutex>

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <optional>

namespace nrt {

/** Whether a value can be stored: plain values, texts, bytes, dates, URLs, JSON, and lists and maps of these,
 * up to a hundred in each other.
 */
bool isStorable(const QVariant& value);

/** The file form of a map of storable values, with a checksum over it. */
QByteArray encodeKeyValues(const QVariantMap& values);
/** No value when the bytes are not what `encodeKeyValues` makes. */
std::optional<QVariantMap> decodeKeyValues(const QByteArray& bytes);

/**
 * Keys and typed values in one file. Every write replaces the file at once, under a lock shared with other
 * processes and on top of what they wrote; so a kill loses nothing that was written. A damaged file is set
 * aside as
 * "<path>.corrupt" and the store starts empty. Any thread.
 */
class KeyValueFile
{
public:
    /** Reads the file; a missing one is an empty store. */
    explicit KeyValueFile(QString path);

    /** Invalid when there is none. */
    QVariant value(const QString& key) const;
    /** Takes in what other processes wrote. */
    void refresh();
    /** An invalid value removes the key. False when it stays in memory only; the reason is logged. */
    bool setValue(const QString& key, const QVariant& value);

private:
    bool mergeFile();
    bool writeMerged();

    const QString m_path;
    mutable std::mutex m_mutex;
    FileIdentity m_seen;      //!< the file whose values are in m_values
    QByteArray m_seenSum;     //!< its checksum
    QVariantMap m_values;     //!< as last seen on disk, with the pending changes on top
    QVariantMap m_pending;    //!< not on disk yet; an invalid value is a removal
    QVariantMap m_memoryOnly; //!< values that cannot be stored
};

} // namespace nrt
