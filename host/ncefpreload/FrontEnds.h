#pragma once

#include "nheliostat/NHelioBrowserWidgetBase.h"

#include <QString>
#include <QUrl>
#include <QVariant>
#include <QVariantMap>

namespace ncefpreload {

/** A front end of the documents site, and where it comes from. */
struct FrontEnd
{
    QString officeType; //!< empty: there is none to load
    QString domain;     //!< the URL of the documents site
    QUrl url;           //!< its page without a document
    QString version;    //!< of the local package that it is loaded from; empty: it comes from the site
    QVector<NHelioLocalPathPair> directories; //!< of the package, by URL prefix
    QVariant injectArray;                     //!< what the package lists; null when it lists nothing

    bool isLocal() const { return !version.isEmpty(); }
};

/** The kind that was opened most over all days of the usage record; empty before the first open of a known
 * kind. */
QString mostUsedOfficeType(const QVariantMap& usage);

/**
 * The front end of the kind that is used most: from the upgraded or installed package of the kind, else from
 * the documents site. Without site or usage there is none.
 */
FrontEnd frontEndToPrepare();

/** The version of the package that documents of the kind are served from now; empty without one. */
QString versionInForce(const QString& officeType);

} // namespace ncefpreload
