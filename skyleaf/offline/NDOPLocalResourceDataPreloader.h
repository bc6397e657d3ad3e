#pragma once

#include "offline/SpreadSharedMutex.h"

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>
#include <QTimer>

#include <atomic>

namespace NDocsOfflinePage {

/**
 * Files of front-end packages, read into memory before the browser asks for them and dropped some minutes
 * after the last package was read.
 *
 * Made on the resource manager's thread, where its timer lives. The operations may be called on any thread;
 * a reader gets a shared copy of the bytes.
 */
class NDOPLocalResourceDataPreloader : public QObject
{
    Q_OBJECT
public:
    NDOPLocalResourceDataPreloader();
    ~NDOPLocalResourceDataPreloader() override;

    /** Reads the page of the office type and the files that the package lists. */
    void readLocalResource(const QString& packageRoot, const QString& officeType);
    /** Reads a file unless it was read already; one that cannot be read is skipped. */
    void loadFile(const QString& path);
    /** The bytes of a file that was read; empty for others. */
    QByteArray fileData(const QString& path) const;
    void storeFile(const QString& path, const QByteArray& bytes);
    /** Lets a package that is being read go at its next file, for good. */
    void stop() { m_stopping = true; }

Q_SIGNALS:
    void preloadedDataClean();

public Q_SLOTS:
    void onClean();

private:
    void init();
    void startCleanTimer();
    void loadListedFiles(const QString& packageRoot);
    qint64 load(const QString& directory, const QString& path, qint64 largest);

    std::atomic<bool> m_stopping{false};
    QHash<QString, QByteArray> m_files; //!< by path with native separators
    mutable SpreadSharedMutex m_lock;   //!< guards m_files
    QTimer m_cleanTimer{this};
    qint64 m_cleanIntervalMinutes = 10;
};

} // namespace NDocsOfflinePage
