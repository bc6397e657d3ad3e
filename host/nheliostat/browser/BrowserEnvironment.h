#pragma once

#include "nheliostat/gateway/RequestGateway.h"

#include <QHash>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QUrl>

#include <functional>
#include <memory>

class IHelioBrowserPageFactory;
class NHelioBrowserWidgetBase;
class QAuthenticator;
class QNetworkCookie;
class QWebEngineCertificateError;
class QWebEngineProfile;

namespace nheliostat::browser {

class PreparedViewStore;
class ProfileStore;
class WebEngineBrowserWidget;
class WebViewContainer;

/**
 * What the browser widgets of a process share: the request gateway, the profiles, the shell's hooks. One at a
 * time, made after the QApplication and destroyed before it; from then on browser widgets that remain are
 * empty. User-interface thread.
 */
class BrowserEnvironment final : public QObject
{
    Q_OBJECT
public:
    struct Setup
    {
        QStringList scriptOrigins; //!< the origins whose main-frame documents get the script object
        QStringList interceptedHosts;
        QMap<QString, QString> resolve; //!< as GatewayOptions::resolve
        GatewayLimits gatewayLimits;
        bool headless = false;    //!< nobody sits before the screen: no dialogs
        QString startupPagesFile; //!< empty: in the user's configuration directory
    };
    /** `factory` may be null; the page it makes belongs to whoever asks it. */
    using NewPageHandler = std::function<void(NHelioBrowserWidgetBase* opener,
                                              IHelioBrowserPageFactory* factory, const QUrl& url)>;
    using ProtocolHandler =
        std::function<void(NHelioBrowserWidgetBase* browser, const QUrl& url, bool marked)>;

    /** Settles whether a document that reported unsaved words may be left. `done` is called once, maybe
     * later. */
    using LeaveHandler =
        std::function<void(NHelioBrowserWidgetBase* browser, std::function<void(bool leaves)> done)>;

    /** Before the QApplication is made: what Chromium needs to know by then. */
    static void prepareProcess(bool headless = false);

    /** Starts the gateway and makes the browsers of CreateHelioBrowserWidget. Throws as RequestGateway does.
     */
    explicit BrowserEnvironment(Setup setup);
    /** Ends all web views. */
    ~BrowserEnvironment() override;

    /** Takes the links that want a new page. Without a handler they load in the page they are in. */
    void setNewPageHandler(NewPageHandler handler);
    /** Takes the URLs of supported protocols. Without a handler they are only logged. */
    void setProtocolHandler(ProtocolHandler handler);

    /** Asks the user where words would be lost. Without a handler they are. */
    void setLeaveHandler(LeaveHandler handler);

    const Setup& setup() const { return m_setup; }
    RequestGateway& gateway() { return *m_gateway; }
    bool isScriptOrigin(const QString& origin) const;
    /** Whether the error is about the gateway's own certificate, shown for an intercepted host. */
    bool isOwnCertificate(const QWebEngineCertificateError& error) const;
    /** How the view publishes large texts for its documents; an invalid URL where the gateway is not asked.
     */
    std::function<QUrl(const QString&, const QByteArray&, const QByteArray&)>
    replyPublisher(const QByteArray& viewId);
    QWebEngineProfile* profile(const QString& cachePath, const QString& cookiePath);
    /** Of the profiles that keep their data, the one that was asked for last; null before that. */
    QWebEngineProfile* lastKeptProfile() const { return m_lastKeptProfile; }
    void setCookie(QWebEngineProfile* profile, const QUrl& url, const QNetworkCookie& cookie,
                   std::function<void(bool)> completion);

    void addView(WebViewContainer* view);
    void removeView(WebViewContainer* view);
    void answerProxyQuestion(const QUrl& url, QAuthenticator* authenticator, const QString& proxyHost);
    void openNewPage(NHelioBrowserWidgetBase* opener, IHelioBrowserPageFactory* factory, const QUrl& url);
    void openProtocol(NHelioBrowserWidgetBase* browser, const QUrl& url, bool marked);
    void askToLeave(NHelioBrowserWidgetBase* browser, std::function<void(bool leaves)> done);

Q_SIGNALS:
    /** What became of a browser request, in order; `browser` is null for a request without a view that still
     * is. */
    void requestFinished(NHelioBrowserWidgetBase* browser, const GatewayRequestRecord& record);

private:
    void deliverRecord(const GatewayRequestRecord& record);

    Setup m_setup;
    NewPageHandler m_newPageHandler;
    ProtocolHandler m_protocolHandler;
    LeaveHandler m_leaveHandler;
    std::unique_ptr<RequestGateway> m_gateway;
    std::unique_ptr<ProfileStore> m_profiles;
    QWebEngineProfile* m_lastKeptProfile = nullptr;
    std::unique_ptr<PreparedViewStore> m_preparedViews;
    QHash<QByteArray, WebViewContainer*> m_views;
};

} // namespace nheliostat::browser

Q_DECLARE_METATYPE(GatewayRequestRecord)
