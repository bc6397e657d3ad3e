#include "nheliostat/browser/BrowserWebPage.h"

#include "nheliostat/browser/NewWindowPage.h"
#include "zeolite/NxLoggerLite.h"

#include <QCoreApplication>

namespace nheliostat::browser {

namespace {

const QString consoleTag = QStringLiteral("console");

/** Counts a question while it is on the screen. */
class Counted
{
public:
    explicit Counted(std::shared_ptr<int> count)
        : m_count(std::move(count))
    {
        ++*m_count;
    }
    ~Counted() { --*m_count; }
    Q_DISABLE_COPY(Counted)

private:
    std::shared_ptr<int> m_count; // outlives a page that goes meanwhile
};

/** The browser asks about leaving as it asks a script's own questions; only its text tells. */
bool isAboutLeaving(const QString& text)
{
    return text == QCoreApplication::translate("QWebEnginePage", "Are you sure you want to leave this page? "
                                                                 "Changes that you made may not be saved.");
}

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
    const Counted open(m_dialogs);
    return m_owner.withoutDialogs ? QStringList()
                                  : QWebEnginePage::chooseFiles(mode, oldFiles, acceptedMimeTypes);
}

void BrowserWebPage::javaScriptAlert(const QUrl& securityOrigin, const QString& text)
{
    const Counted open(m_dialogs);
    if (m_owner.withoutDialogs || m_abandoned)
        NxLoggerLite::writeInfo(consoleTag, QStringLiteral("alert: ") + text);
    else
        QWebEnginePage::javaScriptAlert(securityOrigin, text);
}

bool BrowserWebPage::javaScriptConfirm(const QUrl& securityOrigin, const QString& text)
{
    if (m_abandoned) // the question is whether it may be left
        return true;
    if (m_leaving != Leaving::Asked && isAboutLeaving(text)) {
        if (m_leaving == Leaving::Refused)
            Q_EMIT leavingRefused();
        return m_leaving == Leaving::Allowed;
    }
    const Counted open(m_dialogs);
    return !m_owner.withoutDialogs && QWebEnginePage::javaScriptConfirm(securityOrigin, text);
}

bool BrowserWebPage::javaScriptPrompt(const QUrl& securityOrigin, const QString& text,
                                      const QString& defaultValue, QString* result)
{
    const Counted open(m_dialogs);
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
