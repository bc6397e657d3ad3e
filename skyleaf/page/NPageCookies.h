#pragma once

#include <QList>
#include <QNetworkCookie>
#include <QString>

class NHelioBrowserWidgetBase;
class NxWebViewContainer;

/** The cookies that a page gives its browser: who the user is, and what the server set in replies. */
class NPageCookies
{
public:
    /** The session and identity cookies of the service's sites. */
    void writeAll(NHelioBrowserWidgetBase& browser) const;
    /** Those of the site that a URL leads to. */
    void writeFor(NHelioBrowserWidgetBase& browser, const QString& url) const;
    /** What the server set in a reply that the page asked for itself. */
    void append(const QList<QNetworkCookie>& cookies);
    void giveReplyCookies(NxWebViewContainer* container, const QString& pageUrl) const;

private:
    QList<QNetworkCookie> m_ofReplies;
};
