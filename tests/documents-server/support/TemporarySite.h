#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

namespace documents {

void writeFile(const QString& path, const QByteArray& content);
QByteArray readFile(const QString& path);

/** A directory holding a small site in "site", with room for documents in "documents" and for "packages". */
class TemporarySite
{
public:
    TemporarySite();

    QString site() const { return m_directory.filePath(QStringLiteral("site")); }
    QString documents() const { return m_directory.filePath(QStringLiteral("documents")); }
    QString packages() const { return m_directory.filePath(QStringLiteral("packages")); }
    QString path(const char* relative) const { return m_directory.filePath(QLatin1String(relative)); }

    /** Writes a file at a path relative to the directory, folders included. */
    void add(const char* relative, const QByteArray& content) const { writeFile(path(relative), content); }

private:
    QTemporaryDir m_directory;
};

} // namespace documents
