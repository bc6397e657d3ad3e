#pragma once

#include <optional>

#include <QJsonObject>
#include <QString>

#include "store/Result.h"

namespace documents {

struct Document
{
    QString id;          ///< decimal digits
    QString name;        ///< with its suffix
    QString officeType;  ///< code
    qint64 version = 1;  ///< grows by one with every save
    qint64 modified = 0; ///< milliseconds since the epoch
    QJsonObject content;

    bool operator==(const Document& other) const;
};

/** One to eighteen decimal digits: nothing else names a document, and so nothing else names a file. */
bool isDocumentId(const QString& text);

/** The text after the name's last dot; empty when there is none or it starts the name. */
QString suffixOf(const QString& name);

/** A JSON number without fraction that a double holds exactly; nothing for any other value. */
std::optional<qint64> wholeNumber(const QJsonValue& value);

/** The file format: one JSON object with the members "id", "name", "officeType", "version", "modified",
 * "content". */
QByteArray toFileText(const Document& document);
Result<Document> documentFromFileText(const QByteArray& text);

} // namespace documents
