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
    QLatin1String plugin; ///< under which its front-end packages are handed out
    QLatin1String suffix; ///< of the names of new documents, without dot
};

/** The kind with that code, package or plug-in name, letter case included; null when there is none. */
const OfficeType* officeTypeByCode(const QString& code);
const OfficeType* officeTypeByPackage(const QString& package);
const OfficeType* officeTypeByPlugin(const QString& plugin);

/** What a new document of that kind holds. */
QJsonObject emptyContent(const OfficeType& type);

} // namespace documents
