#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/**
 * The files that programs keep for themselves: settings, lists, records, logs, packages. Somebody else may
 * have put a pipe, a device, a folder or something endless in the place of any of them: nothing here waits
 * for the other end of a pipe, only regular files are read and written, and no file is read beyond a size
 * that the caller states. Symbolic links are followed. Descriptors are close-on-exec. Any thread.
 */
namespace nrt::files {

enum class Fault { None, Missing, NotRegular, TooLarge, Unreadable };

/** The bytes of a file, or why there are none. */
struct Reading
{
    QByteArray bytes; //!< empty with a fault
    Fault fault = Fault::None;
    QString reason; //!< of the fault, for people

    explicit operator bool() const { return fault == Fault::None; }
};

/** The whole file; one of more than `largest` bytes (below 1 GiB) is too large. */
Reading read(const QString& path, qint64 largest);
/** As above, from where an open descriptor stands; it stays open. */
Reading readOpen(int descriptor, qint64 largest);
/** What `read` would meet, without the bytes. */
Reading inspect(const QString& path, qint64 largest);

/**
 * Opens the file at `path`, which is made when it is missing and `mode` writes. Empty, or the reason why it
 * is not open. `file` does not know its name.
 */
QString open(QFile& file, const QString& path, QIODevice::OpenMode mode);

/** Replaces or makes the file, as a whole, by a renamed one. Empty, or the reason why it is as it was. */
QString replace(const QString& path, const QByteArray& bytes);

/**
 * Renames what is at `path` to "<path>.corrupt", or "<path>.corrupt-2" and so on where that does not work.
 * The new name; empty when it is where it was, as a folder always is: it holds what nobody gave to us.
 */
QString setAside(const QString& path);

} // namespace nrt::files
