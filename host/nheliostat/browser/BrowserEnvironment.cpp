#include "nheliostat/browser/BrowserEnvironment.h"

#include "nheliostat/BrowserFactory.h"
#include "nheliostat/NHelioBrowserPageRoot.h"
#include "nheliostat/browser/BrowserOrigin.h"
#include "nheliostat/browser/ChromiumFlags.h"
#include "nheliostat/browser/CookieWriter.h"
#include "nheliostat/browser/PreparedViewStore.h"
#include "nheliostat/browser/ProfileStore.h"
#include "nheliostat/browser/WebEngineBrowserWidget.h"
#include "nheliostat/browser/WebViewContainer.h"
#include "zeolite/NxLoggerLite.h"

#include <QAuthenticator>
#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QNetworkCookie>
#include <QNetworkProxy>
#include <QSslCertificate>
#include <QSslKey>
#include <QStandardPaths>
#include <QWebEngineCertificateError>
#include <QWebEngineProfile>

#include <unistd.h>

namespace nheliostat::browser {

namespace {

const QString gatewayAddress = QStringLiteral("127.0.0.1");

bool hasGraphicsDevice()
{
    return !QDir(QStringLiteral("/dev/dri")).entryList(QDir::System | QDir::NoDotAndDotDot).isEmpty();
}

BrowserEnvironment::Setup withDefaults(BrowserEnvironment::Setup setup)
{
    for (QString& origin : setup.scriptOrigins)
        origin = originOf(QUrl(origin));
    setup.scriptOrigins.removeAll(QString());
    if (setup.startupPagesFile.isEmpty())
        setup.startupPagesFile = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) +
                                 QStringLiteral("/startup-pages.json");
    return setup;
}

} // namespace

void BrowserEnvironment::prepareProcess(bool headless)
{
    if (geteuid() == 0)
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    const QString flags = mergedChromiumFlags(qEnvironmentVariable("QTWEBENGINE_CHROMIUM_FLAGS"),
                                              wantedChromiumFlags(headless || !hasGraphicsDevice()));
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", flags.toUtf8());
    // All that QtWebEngine::initialize() does in an application with widgets.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
}

namespace {

/**
 * Has Chromium take the gateway's key for good. Accepting the certificate page by page is not enough: what
 * comes with a certificate error is neither kept in the HTTP cache nor taken as a service worker.
 */
void trustKeyOf(const QByteArray& certificateDer)
{
    const QByteArray key = QSslCertificate(certificateDer, QSsl::Der).publicKey().toDer();
    const QByteArray hash = QCryptographicHash::hash(key, QCryptographicHash::Sha256).toBase64();
    const QString flags = mergedChromiumFlags(
        qEnvironmentVariable("QTWEBENGINE_CHROMIUM_FLAGS"),
        {QStringLiteral("--ignore-certificate-errors-spki-list=") + QString::fromLatin1(hash)});
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", flags.toUtf8());
}

} // namespace

BrowserEnvironment::BrowserEnvironment(Setup setup)
    : m_setup(withDefaults(std::move(setup)))
    , m_profiles(std::make_unique<ProfileStore>())
{
    qRegisterMetaType<GatewayRequestRecord>();
    GatewayOptions options;
    options.interceptedHosts = m_setup.interceptedHosts;
    options.resolve = m_setup.resolve;
    options.limits = m_setup.gatewayLimits;
    options.observer = [this](const GatewayRequestRecord& record) {
        QMetaObject::invokeMethod(
            this, [this, record] { deliverRecord(record); }, Qt::QueuedConnection);
    };
    m_gateway = std::make_unique<RequestGateway>(std::move(options));
    trustKeyOf(m_gateway->certificateDer());
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::HttpProxy, gatewayAddress,
                                                     m_gateway->port(), m_gateway->user(),
                                                     m_gateway->password()));
    host::setBrowserFactory([this](QWidget* parent, const QString& id, const QString& name) {
        return new WebEngineBrowserWidget(*this, id, name, parent);
    });
    m_preparedViews = std::make_unique<PreparedViewStore>(*this);
}

BrowserEnvironment::~BrowserEnvironment()
{
    host::setBrowserFactory({});
    m_preparedViews.reset();
    const QList<WebViewContainer*> views = m_views.values();
    for (WebViewContainer* const view : views)
        view->endView();
    m_profiles.reset();
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    m_gateway.reset();
}

void BrowserEnvironment::setNewPageHandler(NewPageHandler handler)
{
    m_newPageHandler = std::move(handler);
}

void BrowserEnvironment::setProtocolHandler(ProtocolHandler handler)
{
    m_protocolHandler = std::move(handler);
}

void BrowserEnvironment::setLeaveHandler(LeaveHandler handler)
{
    m_leaveHandler = std::move(handler);
}

bool BrowserEnvironment::isScriptOrigin(const QString& origin) const
{
    return m_setup.scriptOrigins.contains(origin);
}

bool BrowserEnvironment::isOwnCertificate(const QWebEngineCertificateError& error) const
{
    const QList<QSslCertificate> chain = error.certificateChain();
    return !chain.isEmpty() && m_setup.interceptedHosts.contains(error.url().host(), Qt::CaseInsensitive) &&
           chain.first().toDer() == m_gateway->certificateDer();
}

std::function<QUrl(const QString&, const QByteArray&, const QByteArray&)>
BrowserEnvironment::replyPublisher(const QByteArray& viewId)
{
    return [this, viewId](const QString& origin, const QByteArray& body, const QByteArray& type) {
        const QUrl url(origin);
        if (!isAnsweredLocally(url, m_setup.interceptedHosts))
            return QUrl();
        return m_gateway->publishReply(viewId, url, body, type);
    };
}

QWebEngineProfile* BrowserEnvironment::profile(const QString& cachePath, const QString& cookiePath)
{
    QWebEngineProfile* const found = m_profiles->profile(cachePath, cookiePath);
    if (!found->isOffTheRecord())
        m_lastKeptProfile = found;
    return found;
}

void BrowserEnvironment::setCookie(QWebEngineProfile* profile, const QUrl& url, const QNetworkCookie& cookie,
                                   std::function<void(bool)> completion)
{
    m_profiles->cookies(profile)->set(url, cookie, std::move(completion));
}

void BrowserEnvironment::addView(WebViewContainer* view)
{
    m_views.insert(view->viewId(), view);
}

void BrowserEnvironment::removeView(WebViewContainer* view)
{
    m_views.remove(view->viewId());
}

void BrowserEnvironment::answerProxyQuestion(const QUrl&, QAuthenticator* authenticator,
                                             const QString& proxyHost)
{
    if (proxyHost != gatewayAddress)
        return;
    authenticator->setUser(m_gateway->user());
    authenticator->setPassword(m_gateway->password());
}

void BrowserEnvironment::openNewPage(NHelioBrowserWidgetBase* opener, IHelioBrowserPageFactory* factory,
                                     const QUrl& url)
{
    if (m_newPageHandler)
        m_newPageHandler(opener, factory, url);
    else
        opener->load(url);
}

void BrowserEnvironment::openProtocol(NHelioBrowserWidgetBase* browser, const QUrl& url, bool marked)
{
    NxLoggerLite::writeInfo(QStringLiteral("Browser"), QStringLiteral("protocol ") + url.scheme());
    if (m_protocolHandler)
        m_protocolHandler(browser, url, marked);
}

void BrowserEnvironment::askToLeave(NHelioBrowserWidgetBase* browser, std::function<void(bool)> done)
{
    if (m_leaveHandler)
        m_leaveHandler(browser, std::move(done));
    else
        done(true);
}

void BrowserEnvironment::deliverRecord(const GatewayRequestRecord& record)
{
    WebViewContainer* const view = m_views.value(record.viewId);
    if (view)
        view->noteRequest(record);
    Q_EMIT requestFinished(view ? WebEngineBrowserWidget::browserOf(view) : nullptr, record);
}

} // namespace nheliostat::browser
