#pragma once

#include <functional>
#include <optional>

#include <QString>
#include <QStringList>
#include <QVector>

#include "drive/DriveItem.h"
#include "drive/SqlFile.h"
#include "store/Result.h"

namespace documents {

/** What there is in all drives together. */
struct DriveTotals
{
    qint64 folders = 0;
    qint64 files = 0;
    qint64 uploads = 0; ///< unfinished
    qint64 bytes = 0;   ///< of all versions' contents, each content counted once
};

/** What fell with a removed item. */
struct RemovedParts
{
    QVector<qint64> uploads;
    QStringList contents; ///< SHA-1s that no file holds any more
};

/** The drive's records: items, versions of files, unfinished uploads. Rules are the callers' affair. */
class DriveTables
{
public:
    explicit DriveTables(const QString& file);

    Failure open();
    Failure transaction(const std::function<Failure()>& changes) { return m_file.transaction(changes); }

    Result<std::optional<DriveItem>> item(qint64 id);
    Result<std::optional<DriveItem>> child(qint64 group, qint64 parent, const QString& name);
    /** Folders first, each kind by name. */
    Result<QVector<DriveItem>> children(qint64 group, qint64 parent);
    /** From the root down to the folder itself; empty for 0. */
    Result<QVector<DriveItem>> path(qint64 folder);

    /** The item's id is given by the table; a file's version is recorded with it. */
    Result<DriveItem> insert(const DriveItem& item);
    Failure rename(const DriveItem& file);
    /** The file's present content becomes its newest version. */
    Failure addVersion(const DriveItem& file);
    /** The item with everything below it. */
    Result<RemovedParts> remove(qint64 id);

    /** Newest first. */
    Result<QVector<FileVersion>> versions(qint64 file);

    Result<std::optional<UploadOrder>> upload(qint64 id);
    Result<std::optional<qint64>> uploadLike(const UploadOrder& order);
    Result<qint64> insert(const UploadOrder& order);
    Failure removeUpload(qint64 id);

    Result<DriveTotals> totals();

private:
    Result<QVector<DriveItem>> items(const QString& statement, const QVariantList& values);
    Result<std::optional<DriveItem>> oneItem(const QString& statement, const QVariantList& values);

    SqlFile m_file;
};

} // namespace documents
