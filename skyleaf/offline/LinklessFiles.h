#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

/**
 * Files of the user's data, by absolute paths without symbolic links: a link on the way, one that appears
 * meanwhile too, fails the operation. Only regular files are read and replaced; a pipe or a device fails at
 * once. Any thread.
 *
 * A file is replaced as a whole by a renamed one: whoever reads it finds the old or the new content, also
 * after the disk was full or the process was killed. Nothing waits for the disk.
 */
namespace nlinklessfiles {

/** The largest file that is read, in bytes: as Base64 it is still one text of the page's script. */
constexpr qint64 largestFile = 256LL << 20;

/** None when there is no such file, it cannot be read to its end, or it is too large. */
std::optional<QByteArray> readFile(const QString& path);
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
