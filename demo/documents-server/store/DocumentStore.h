#pragma once

#include <functional>

#include <QJsonObject>
#include <QString>
#include <QVector>

#include "store/Document.h"
#include "store/Result.h"

namespace documents {

/** Milliseconds since the epoch. */
using Clock = std::function<qint64()>;

/** What a list of documents shows of one. */
struct DocumentSummary
{
    QString id;
    QString name;
    QString officeType;
    qint64 version = 0;
    qint64 modified = 0; ///< milliseconds since the epoch
    qint64 size = 0;     ///< bytes of its file
};

/**
 * Documents as files of one directory, one "<id>.json" each. Every read comes from the disk and every write
 * goes through a temporary file that is synchronised and renamed, so a killed process leaves either the old
 * or the new document. For one thread, and for one process a directory.
 */
class DocumentStore
{
public:
    DocumentStore(QString directory, Clock clock);

    /** Makes the directory when missing and fills it with the demo documents when it holds no document. */
    Failure open();

    /** All readable documents by ascending id; damaged files are left out with a warning on standard error.
     */
    QVector<DocumentSummary> list() const;
    bool contains(const QString& id) const;
    Result<Document> load(const QString& id) const;

    /** An empty document under the next free id. An empty name gives "Untitled", a missing suffix is added.
     */
    Result<Document> create(const QString& officeType, const QString& name);

    /** Replaces the content when `baseVersion` is the stored version, else VersionConflict. */
    Result<Document> save(const QString& id, qint64 baseVersion, const QJsonObject& content);

private:
    QString pathOf(const QString& id) const;
    QVector<QString> ids() const;
    Failure write(const Document& document) const;
    Failure seed() const;

    QString m_directory;
    Clock m_clock;
};

} // namespace documents
