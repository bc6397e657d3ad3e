#pragma once

#include "nrt/files.h"

#include <QByteArray>
#include <QString>

#include <functional>

/**
 * Files of the user's data, by absolute paths without symbolic links: a link on the way, one that appears
 * meanwhile too, fails the operation. Only regular files are read and replaced; a pipe or a device fails at
 * once. A file with several names (hard links) is not read: it may be one of elsewhere. Any thread.
 *
 * A file is replaced as a whole by a renamed one: whoever reads it finds the old or the new content, also
 * after the disk was full or the process was killed. Nothing waits for the disk.
 */
namespace nlinklessfiles {

/** The largest file that is read, in bytes: as Base64 it is still one text of the page's script. */
constexpr qint64 largestFile = 256LL << 20;

nrt::files::Reading readFile(const QString& path, qint64 largest = largestFile);
/** Makes the folder with all missing parents; true also when it is there. */
bool makeFolder(const QString& path);
bool makeParentFolder(const QString& path);

// Writers of one file follow each other: no change gets lost to another one. The file's folder is there.
/** Replaces or makes the file. */
bool writeFile(const QString& path, const QByteArray& bytes);
/** `change` makes the new content from the old one, which is empty without a file. */
bool changeFile(const QString& path, const std::function<QByteArray(const QByteArray& old)>& change);
bool appendToFile(const QString& path, const QByteArray& bytes);

/** Anything but a folder. */
bool removeFile(const QString& path);
/** A folder with everything in it; links in it go, what they point to stays. */
bool removeFolder(const QString& path);

} // namespace nlinklessfiles
