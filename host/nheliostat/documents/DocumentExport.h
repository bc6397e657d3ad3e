#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/** A document of the documents service, as a text that can be shown without the service. */
struct DocumentExport
{
    QString name; //!< of the document, such as "Plan.docx"; no path
    QByteArray html;

    /** The address that answers the export of a document. */
    static QString url(const QString& apiUrl, const QString& documentId);
    /** From the service's answer; nothing when that is no export or the document has nothing to show. */
    static std::optional<DocumentExport> fromReply(const QByteArray& body);
};

/** A name that is one plain component of a path, whatever it was before. */
QString plainFileName(const QString& name, const QString& otherwise);
