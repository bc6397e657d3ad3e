#pragma once

#include <QString>
#include <QUrl>

#include <functional>

/** The URLs of the documents service, as a page reads and writes them. */
namespace docsurl {

/** Whether the URL is valid and its path starts with "/p/" or "/l/". */
bool isDocumentUrl(const QUrl& url);
/** The last segment of a document URL's path; empty for any other URL. */
QString fileIdOf(const QUrl& url);
/** The text after the last "/" of the path, whatever the path. */
QString lastSegmentOf(const QUrl& url);

/** The value of a query item, fully decoded; empty when absent. */
QString queryValue(const QUrl& url, const QString& name);
/** Sets a query item in place of the first present one of that name, dropping the others, or at the end. */
void replaceQueryItem(QUrl& url, const QString& name, const QString& value);
void removeQueryItems(QUrl& url, const QStringList& names);
/** `url` with the query item set; a text that is no valid URL is kept. */
QString withQueryItem(const QString& url, const QString& name, const QString& value);

/** 32 hexadecimal digits, new with every call. */
QString newIdentifier();

/** What makes a service URL from a command. */
struct CommandContext
{
    QString serviceOrigin;
    QString version;
    QString application;
    QString channel;
    qint64 nowMs = 0;
};

/** The URL of a command such as "lock" or "/recent?x=1"; an empty one gives the start page. */
QString commandUrl(const QString& command, const CommandContext& context);

/** What a page knows when it takes a URL. */
struct NormalizeContext
{
    QString officeType;     //!< empty when not known yet
    QString traceId;        //!< empty when the open has none yet
    QString fileNameSuffix; //!< of the page's file name
    QString suffix;         //!< the page's suffix
    bool darkSkin = false;
    std::function<QString(const QString&)> officeTypeOfSuffix;
    std::function<QString(const QString&)> recordedOfficeType; //!< by file id
    std::function<bool(const QString&)> isClientProxy;         //!< by office type
    std::function<QString()> makeTraceId;
};

struct Normalized
{
    QString url;
    QString officeType;
    QString traceId;
    bool clientProxy = false;
};

/** The URL with everything that a document open carries; an invalid URL keeps its text. */
Normalized normalize(const QString& url, const NormalizeContext& context);

/** The URL without the items that belong to one open. */
QString withoutOpenTimeItems(const QString& url);
/** `url` for a reload that begins now, for a reason; empty when there is no valid URL to reload. */
QString reloadUrl(const QString& url, const QString& reason, qint64 nowMs);
/** The URL so that the server, not a local package, answers it; an invalid URL keeps its text. */
QString withoutLocalPackageItems(const QString& url);

/** The text after the last "pcEnter=" up to the next "&". */
QString enterSourceOf(const QString& url);

} // namespace docsurl
