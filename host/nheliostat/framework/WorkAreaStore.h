#pragma once

#include "nheliostat/framework/WorkAreaRecord.h"
#include "nrt/FileLock.h"

#include <QString>
#include <QThreadPool>

#include <memory>
#include <vector>

/**
 * The files in which shells of one data directory keep what they show: each writes one of its own and holds a
 * lock beside it, so that a file whose lock is free was left by a shell that ended without cleaning up.
 */
class WorkAreaStore
{
public:
    /** An empty directory keeps nothing. It is made when needed. */
    explicit WorkAreaStore(const QString& directory);
    /** Waits until the last record is written. */
    ~WorkAreaStore();

    /** Writes the record of this shell, as a whole, on another thread; an empty one removes the file. */
    void write(const WorkAreaRecord& record);
    /** Until all that was given to `write` lies on the disk. */
    void waitUntilWritten();
    /** This shell ends in good order: it leaves nothing to recover. */
    void clear();

    /**
     * What shells left that ended without cleaning up, the oldest first, as one record. Read when first asked
     * for; damaged parts are logged and left out, a file that cannot be read at all is set aside. The files
     * stay, closed to other shells, until `forgetAbandoned`.
     */
    const WorkAreaRecord& abandoned();
    void forgetAbandoned();

private:
    struct Abandoned
    {
        QString path;
        std::unique_ptr<nrt::FileLock> lock;
    };

    void readAbandoned();
    void readFile(const QString& path);
    void removeLocksWithoutRecord() const;
    static void remove(const QString& path);

    const QString m_directory;
    QString m_path; //!< of this shell's record
    std::unique_ptr<nrt::FileLock> m_lock;
    QThreadPool m_writer; //!< one thread
    QByteArray m_lastWritten;
    bool m_hasReadAbandoned = false;
    WorkAreaRecord m_record;
    std::vector<Abandoned> m_abandoned;
};
