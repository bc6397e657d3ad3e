#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

#include <functional>

namespace shell::sitepages {

/** The page of the site that offers memberships; `source` says where the user came from. Invalid without a
 * site. */
QUrl membership(const QString& site, const QString& source);
/** The drive of the site at a folder; group and folder may be empty. Invalid without a site. */
QUrl drive(const QString& site, const QString& groupId, const QString& folderId);

/** Asks the site whether it has the page, and calls back at a later turn of the event loop, while `context`
 * lives. */
void whetherServed(const QUrl& url, QObject* context, std::function<void(bool isServed)> done);

} // namespace shell::sitepages
