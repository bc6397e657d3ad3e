#pragma once

#include <memory>
#include <optional>

#include <QFile>
#include <QVector>

#include "drive/ContentFiles.h"
#include "drive/DriveItem.h"
#include "drive/DriveTables.h"
#include "store/DocumentStore.h"
#include "store/Result.h"

namespace documents {

struct DriveFolder
{
    std::optional<DriveItem> folder; ///< nothing for a root
    QVector<DriveItem> path;         ///< from the root down to the folder itself
    QVector<DriveItem> items;
};

/** A version of a file, ready to be read. */
struct OpenContent
{
    QString name;
    FileVersion version;
    std::shared_ptr<QFile> file; ///< open, at its beginning
};

/**
 * Folders and files by group, files with all their versions. Groups are there by being named. Ids that lead
 * nowhere give NotFound, bad names Invalid, a name that another kind of item has Conflict. The tables are
 * shared with the uploads. For one thread.
 */
class DriveStore
{
public:
    DriveStore(DriveTables& tables, ContentFiles contents, Clock clock);

    Result<DriveFolder> list(qint64 group, qint64 folder);
    Result<DriveItem> item(qint64 id);

    struct MadeFolder
    {
        DriveItem item;
        bool isNew = false;
    };
    /** The folder of that name, made when it is not there. */
    Result<MadeFolder> makeFolder(qint64 group, qint64 parent, const QString& name);

    /** The item with everything below it; answers the unfinished uploads that fell with it. */
    Result<QVector<qint64>> remove(qint64 id);

    /** Success when content could go there now. */
    Failure check(const FileTarget& target);

    /** Stores the bytes as a file or its next version; the same bytes as the present ones change nothing. A
     * sum that is not empty must be theirs. */
    Result<DriveItem> put(const FileTarget& target, const QString& sha1, const QByteArray& bytes);

    /** True when the bytes of that content are here, in whatever file. */
    bool hasContent(const FileContent& content) const { return m_contents.contains(content); }

    /** As `put`, with a file on disk that is known to hold the content and is taken over; an empty path for a
     * content that is here. The upload's record goes in the same step. */
    Result<DriveItem> adopt(qint64 upload, const UploadOrder& order, const QString& path);

    Result<QVector<FileVersion>> versions(qint64 file);
    /** The present version unless another is named. */
    Result<OpenContent> content(qint64 file, std::optional<qint64> version);

private:
    Failure checkFolder(qint64 group, qint64 folder);
    /** The item that gets a new version; nothing when a file is to be made. */
    Result<std::optional<DriveItem>> present(const FileTarget& target);
    Result<DriveItem> record(const FileTarget& target, const FileContent& content);
    Result<DriveItem> file(qint64 id);

    DriveTables& m_tables;
    ContentFiles m_contents;
    Clock m_clock;
};

} // namespace documents
