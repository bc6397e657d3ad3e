#include "nheliostat/browser/BrowserWebPage.h"

#include "nheliostat/browser/NewWindowPage.h"
#include "zeolite/NxLoggerLite.h"

namespace nheliostat::browser {

namespace {

const QString consoleTag = QStringLiteral("console");

} // namespace

BrowserWebPage::BrowserWebPage(QWebEngineProfile* profile, Owner owner, QObject* parent)
    : QWebEnginePage(profile, parent)
    , m_owner(std::move(owner))
{
    connect(this, &QWebEnginePage::featurePermissionRequested, this, &BrowserWebPage::denyFeature);
}

bool BrowserWebPage::acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame)
{
    return m_owner.acceptNavigation(url, type, isMainFrame);
}

bool BrowserWebPage::certificateError(const QWebEngineCertificateError& error)
{
    return m_owner.acceptCertificate(error);
}

QWebEnginePage* BrowserWebPage::createWindow(WebWindowType)
{
    auto* const window = new NewWindowPage(profile(), this);
    connect(window, &NewWindowPage::urlRequested, this,
            [this](const QUrl& url) { m_owner.openNewWindow(url); });
    return window;
}

QStringList BrowserWebPage::chooseFiles(FileSelectionMode mode, const QStringList& oldFiles,
                                        const QStringList& acceptedMimeTypes)
{
    return m_owner.withoutDialogs ? QStringList()
                                  : QWebEnginePage::chooseFiles(mode, oldFiles, acceptedMimeTypes);
}

void BrowserWebPage::javaScriptAlert(const QUrl& securityOrigin, const QString& text)
{
    if (m_owner.withoutDialogs || m_abandoned)
        NxLoggerLite::writeInfo(consoleTag, QStringLiteral("alert: ") + text);
    else
        QWebEnginePage::javaScriptAlert(securityOrigin, text);
}

bool BrowserWebPage::javaScriptConfirm(const QUrl& securityOrigin, const QString& text)
{
    if (m_abandoned) // the question is whether it may be left
        return true;
    return !m_owner.withoutDialogs && QWebEnginePage::javaScriptConfirm(securityOrigin, text);
}

bool BrowserWebPage::javaScriptPrompt(const QUrl& securityOrigin, const QString& text,
                                      const QString& defaultValue, QString* result)
{
    return !m_owner.withoutDialogs && !m_abandoned &&
           QWebEnginePage::javaScriptPrompt(securityOrigin, text, defaultValue, result);
}

void BrowserWebPage::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString& text,
                                              int line, const QString& source)
{
    if (level == InfoMessageLevel)
        return;
    NxLoggerLite::writeWarning(
        consoleTag,
        QStringLiteral("%1 (%2:%3)").arg(text.left(2000), source.left(300), QString::number(line)));
}

void BrowserWebPage::denyFeature(const QUrl& securityOrigin, Feature feature)
{
    setFeaturePermission(securityOrigin, feature, PermissionDeniedByUser);
}

} // namespace nheliostat::browser
