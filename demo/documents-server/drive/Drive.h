#pragma once

#include <QString>

#include "drive/DriveStore.h"
#include "drive/DriveTables.h"
#include "drive/DriveUploads.h"

namespace documents {

/**
 * All drives below one directory: "drive.sqlite" with the records, "content" with the files' contents and
 * "uploads" with what has arrived of unfinished ones. The first call after `open` decides on the one thread
 * that may use it; one process a directory.
 */
class Drive
{
public:
    Drive(const QString& directory, Clock clock);

    /** Makes the directory when missing. */
    Failure open();

    DriveStore& store() { return m_store; }
    DriveUploads& uploads() { return m_uploads; }
    Result<DriveTotals> totals() { return m_tables.totals(); }

private:
    DriveTables m_tables;
    DriveStore m_store;
    DriveUploads m_uploads;
};

} // namespace documents
