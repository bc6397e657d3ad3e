#pragma once

#include "base/Outcome.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace vltcloud {

/** A value, or why there is none: for people. */
template <typename T>
using Result = base::Outcome<T, QString>;

/** The file that a window is to send. */
struct SendFileRequest
{
    QString fileId;
    QString fileName; //!< the id when the caller names none
    QString link;     //!< empty without a site
};

/**
 * Reads "widgetType" ("sendFileWindow"), "fileId", "fileName" and "link" (also written "fileid", "filename",
 * "name" and "url"); the link of a file without one is its page on the site.
 */
Result<SendFileRequest> readSendFileRequest(const QVariantMap& arguments, const QString& site);

/** The names in what a user typed, separated by commas, semicolons or white space, each once. */
QStringList readRecipients(const QString& text);

} // namespace vltcloud
