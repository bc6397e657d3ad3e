#pragma once

#include "nheliostat/NHelioBrowserWidgetBase.h"

#include <functional>

namespace nheliostat::host {

/**
 * Web views without a browser widget, for whoever keeps some in advance. User-interface thread. Views belong
 * to the widget that holds them, and are empty once the browser environment is gone.
 */
class PreparedViews
{
public:
    /** Told about a view until it is given to a browser, wiped again or destroyed. Both are set. */
    struct Listener
    {
        std::function<void(bool ok)> loaded; //!< a load ended
        std::function<void()> gone;          //!< the renderer process ended; the view shows nothing any more
    };

    virtual ~PreparedViews() = default;

    /** A hidden view with the profile of the last browser that keeps its data; null before there was one. */
    virtual NxWebViewContainer* make(QWidget* holder, Listener listener) = 0;
    /** Local directories that answer the view's requests, by URL prefix. */
    virtual void serve(NxWebViewContainer* view, const QVector<NHelioLocalPathPair>& directories) = 0;
    virtual void load(NxWebViewContainer* view, const QUrl& url) = 0;
    /**
     * Takes a view from its browser into `holder`: its script object, handlers, directories, headers,
     * listeners and the session data of its page go. What it shows stays until the next load, which nothing
     * can refuse.
     */
    virtual void wipe(NxWebViewContainer* view, QWidget* holder, Listener listener) = 0;
    /** Process id of the renderer; 0 when there is none. */
    virtual qint64 renderer(const NxWebViewContainer* view) const = 0;
    /**
     * A browser widget whose `initWebView` takes the view, if the profile is the one that it asks for. It has
     * its startup URL switched off. With a null view it makes one as other browsers do.
     */
    virtual NHelioBrowserWidgetBase* makeBrowser(QWidget* parent, const QString& id, const QString& name,
                                                 NxWebViewContainer* view) = 0;
};

/** Null while there is no browser environment. */
PreparedViews* preparedViews();
/** Not owned; null to withdraw them. */
void setPreparedViews(PreparedViews* views);

} // namespace nheliostat::host
