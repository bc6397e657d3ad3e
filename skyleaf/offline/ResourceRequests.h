#pragma once

#include "offline/NDOPResponseData.h"

#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>

#include <optional>

/** The rules by which the browser's requests are answered from local data; without state, any thread. */
namespace nresourcerequests {

/**
 * The URL of a call of the documents server's API. `origin` has no port. An empty kind gives an empty key,
 * one that is not known the origin.
 */
QString requestKey(const QString& origin, const QString& kind, const QString& fileId,
                   const QString& packageName);

/** How a request for a prefetched reply is to be answered. */
struct ReplyRequest
{
    unsigned timeoutMs = 5000; //!< how long it may wait for the reply
};
/** Nothing for a request that belongs to the network: not asking for the proxy, or of another page's. */
std::optional<ReplyRequest> parseReplyRequest(const QString& url, const QString& kind,
                                              const QString& boundConnId);

/** What a callback gets: nothing but the mark of a local answer unless the reply came with status 200. */
QVariantMap answer(const NDocsOfflinePage::NDOPResponseData& response);

/** Whether the path is that of a document's page. */
bool isDocumentPath(const QString& path);
/** Whether both URLs name the same document or, where one names none, the same path. */
bool isSameDocument(const QUrl& url, const QUrl& other);

/** The beginnings of page URLs. */
QStringList pagePrefixes(const QString& origin);
/** The page of an office type in a package. */
QString pageFile(const QString& packageRoot, const QString& officeType);
QString scriptUrlPrefix(const QString& origin);
QString scriptLocalPrefix(const QString& packageRoot);

} // namespace nresourcerequests
