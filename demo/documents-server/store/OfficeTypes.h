#pragma once

#include <QJsonObject>
#include <QLatin1String>
#include <QString>

namespace documents {

/** One kind of document. The code stands in page addresses, the package names its front end. */
struct OfficeType
{
    QLatin1String code;
    QLatin1String package;
    QLatin1String suffix; ///< of the names of new documents, without dot
};

/** The kind with that code or package name, letter case included; null when there is none. */
const OfficeType* officeTypeByCode(const QString& code);
const OfficeType* officeTypeByPackage(const QString& package);

/** What a new document of that kind holds. */
QJsonObject emptyContent(const OfficeType& type);

} // namespace documents
