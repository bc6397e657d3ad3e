#pragma once

#include <QString>

/** Links to documents of the documents site. */
namespace docslinks {

/** Where the site's document links begin; empty when the deployment names no site. */
QString documentUrlBase();
/** The link to a document. */
QString documentUrl(const QString& fileId);
/** The id of the document that a link of the site leads to; empty for any other URL. */
QString fileIdFromDocsUrl(const QString& url);

} // namespace docslinks
