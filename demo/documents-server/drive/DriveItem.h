#pragma once

#include <QString>

namespace documents {

/** What a file holds, whatever it is called. */
struct FileContent
{
    QString sha1; ///< 40 lower-case hexadecimal digits
    qint64 size = 0;

    bool operator==(const FileContent& other) const { return sha1 == other.sha1 && size == other.size; }
};

enum class DriveItemType { Folder, File };

/** A folder or file of a group's drive. */
struct DriveItem
{
    qint64 id = 0;
    qint64 group = 0;
    qint64 parent = 0; ///< 0: the group's root
    QString name;
    DriveItemType type = DriveItemType::Folder;
    FileContent content = {};
    qint64 modified = 0; ///< milliseconds since the epoch
    qint64 version = 0;  ///< of a file, from 1 on
};

struct FileVersion
{
    qint64 version = 0;
    FileContent content;
    qint64 modified = 0; ///< milliseconds since the epoch
};

/** Where content is to go. */
struct FileTarget
{
    qint64 group = 0;
    qint64 parent = 0;
    qint64 file = 0; ///< 0: the file of that name, a new one when there is none
    QString name;    ///< may be empty when `file` is given: the file keeps its name
};

/** What an upload is to become. */
struct UploadOrder
{
    FileTarget target;
    FileContent content;
};

} // namespace documents
