#pragma once

#include "support/FakeScriptTransport.h"
#include "zeolite/NxWebViewAsynJSObject.h"
#include "zeolite/NxWebViewContainer.h"

#include <vector>

/** A web view without a browser: records what it is asked; its signals are raised by the test. */
class FakeWebViewContainer final : public NxWebViewContainer
{
public:
    struct CookieRequest
    {
        QUrl url;
        QNetworkCookie cookie;
        std::function<void(bool)> completion;
    };

    using NxWebViewContainer::NxWebViewContainer;

    QString userAgent() const override { return browserUserAgent; }
    void setCustomHeaderHandler(CustomHeaderHandler handler) override { headerHandler = std::move(handler); }
    void setCookie(const QUrl& url, const QNetworkCookie& cookie,
                   std::function<void(bool)> completion) override
    {
        cookieRequests.push_back({url, cookie, std::move(completion)});
    }
    void executeScript(const QString& script) override { scripts.append(script); }
    void clearLocalResourceCache() override { ++resourceCacheClearings; }
    void enableDragDrop(bool enable) override { dragDropEnabled = enable; }
    void setWebViewParent(QWidget* parent) override { setParent(parent); }
    void destroyLater() override { deleteLater(); }
    INxScriptTransport& scriptTransport() override { return transport; }

    /** Another document is shown in the place of the present one. */
    void deliverNextDocument(NxWebViewAsynJSObject& scriptObject)
    {
        ++transport.shownDocument;
        scriptObject.endDocument();
    }
    /** Answers the cookie request of that index. */
    void deliverCookieStored(std::size_t index, bool stored)
    {
        if (cookieRequests.at(index).completion)
            cookieRequests.at(index).completion(stored);
    }
    /** The headers that a request of the view would carry beyond the browser's own. */
    QMap<QByteArray, QByteArray> deliverRequestHeaders() const
    {
        QMap<QByteArray, QByteArray> headers;
        if (headerHandler)
            headerHandler(headers);
        return headers;
    }

    QString browserUserAgent = QStringLiteral("FakeBrowser/1.0");
    CustomHeaderHandler headerHandler;
    std::vector<CookieRequest> cookieRequests;
    QStringList scripts;
    int resourceCacheClearings = 0;
    bool dragDropEnabled = false;
    FakeScriptTransport transport;
};
