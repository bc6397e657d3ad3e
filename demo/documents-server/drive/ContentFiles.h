#pragma once

#include <memory>

#include <QByteArray>
#include <QFile>
#include <QString>

#include "drive/DriveItem.h"
#include "store/Result.h"

namespace documents {

/** What it means that a file took fewer bytes than it was given: no room, or another refusal. */
Error writeError(const QFileDevice& file);

/**
 * File contents by their SHA-1, each kept once: "<first two digits>/<the others>" below one directory. A
 * content appears whole or not at all, as it is renamed into its place; it is not synchronised. For one
 * thread.
 */
class ContentFiles
{
public:
    explicit ContentFiles(QString directory);

    bool contains(const FileContent& content) const;
    /** The content's open file; null when it is missing or not of the content's size. */
    std::shared_ptr<QFile> open(const FileContent& content) const;

    Failure store(const FileContent& content, const QByteArray& bytes) const;
    /** Takes over a file of the same file system that holds the content; it is gone from its old place. */
    Failure adopt(const FileContent& content, const QString& path) const;
    void remove(const QString& sha1) const;

private:
    QString pathOf(const QString& sha1) const;

    QString m_directory;
};

} // namespace documents
