#pragma once

#include "vltcloudsvr/common/Result.h"
#include "vltcloudsvr/transfers/FileDescriptor.h"

#include <QStringList>

namespace vlt::cloudsvr {

/**
 * An open directory that downloads are written to. Everything is reached from its descriptor, step by step
 * and never through a symbolic link, so that nothing is written elsewhere, whatever is put in the way
 * meanwhile.
 */
class TargetDirectory
{
public:
    /** `root` is followed as it stands; the directories `below` it, joined with "/", are made when missing.
     */
    static Result<TargetDirectory> open(const QString& root, const QString& below);

    bool contains(const QString& name) const;
    /** Makes a directory, or takes the one that is there. Empty, or the error. */
    QString makeDirectory(const QString& name) const;
    /** Opens a file for writing, made when missing. Not open with errno. */
    FileDescriptor openPart(const QString& name, bool isEmptied) const;
    FileDescriptor openForReading(const QString& name) const;
    void remove(const QString& name) const;
    /** Renames, never over something: false with errno EEXIST. */
    bool rename(const QString& from, const QString& to) const;
    /** "name", or "name (1)", "name (2)" … when that is taken; the number goes before the suffix of a file.
     */
    QString freeName(const QString& name, bool isFile) const;

private:
    FileDescriptor m_directory;
};

/** "name (number).suffix", cut before the number when it would be too long for a name. */
QString numberedName(const QString& name, int number, bool isFile);

/** The text of errno. */
QString systemError(int number);

} // namespace vlt::cloudsvr
