#pragma once

#include <QString>

namespace vlt::cloudsvr {

/**
 * Where the service of a data directory is found. Whoever holds the lock on `lockPath` is the service; the
 * system takes the lock from a process that dies.
 */
struct ServicePlace
{
    QString dataDir; //!< canonical
    QString socketPath;
    QString lockPath;

    QString logPath() const;
    QString recordsPath() const;
    QString transfersPath() const;
    QString pluginsDir() const;
};

/**
 * The socket lies in the data directory, or in a directory of the user's own for passing files when its path
 * would be longer than socket addresses can be. Makes no directory except the data directory itself.
 */
ServicePlace placeOf(const QString& dataDir);

/** Makes the socket's directory, for the user alone. Empty, or what is wrong with it. */
QString prepareSocketDirectory(const ServicePlace& place);

/** Whether a service holds the lock; returns at once. */
bool isServed(const ServicePlace& place);

} // namespace vlt::cloudsvr
