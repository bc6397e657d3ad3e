#pragma once

#include <QWebEnginePage>

#include <functional>
#include <memory>

namespace nheliostat::browser {

/** The page of a web view: hands Chromium's questions to its owner. User-interface thread. */
class BrowserWebPage final : public QWebEnginePage
{
    Q_OBJECT
public:
    /** The owner's answers. All are set; they are called until the page is destroyed. */
    struct Owner
    {
        std::function<bool(const QUrl& url, NavigationType type, bool isMainFrame)> acceptNavigation;
        std::function<bool(const QWebEngineCertificateError& error)> acceptCertificate;
        std::function<void(const QUrl& url)> openNewWindow;
        /** Without dialogs, alerts are logged and questions are answered with no. */
        bool withoutDialogs = false;
    };

    BrowserWebPage(QWebEngineProfile* profile, Owner owner, QObject* parent);

    /** Nobody looks at the page any more: it may ask nothing, and cannot hold up its own going. */
    void setAbandoned(bool abandoned) { m_abandoned = abandoned; }

    /** What becomes of the document's objection to being left. */
    enum class Leaving {
        Asked,   //!< the user is asked
        Refused, //!< the document stays, which `leavingRefused` tells
        Allowed  //!< it is left all the same
    };
    void setLeaving(Leaving leaving) { m_leaving = leaving; }
    /** Whether a question of the page, or one for files, is on the screen. */
    bool hasDialog() const { return *m_dialogs > 0; }

Q_SIGNALS:
    /** The document objected and stays. Raised inside the browser's question: receivers return at once. */
    void leavingRefused();

protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override;
    bool certificateError(const QWebEngineCertificateError& error) override;
    QWebEnginePage* createWindow(WebWindowType type) override;
    QStringList chooseFiles(FileSelectionMode mode, const QStringList& oldFiles,
                            const QStringList& acceptedMimeTypes) override;
    void javaScriptAlert(const QUrl& securityOrigin, const QString& text) override;
    bool javaScriptConfirm(const QUrl& securityOrigin, const QString& text) override;
    bool javaScriptPrompt(const QUrl& securityOrigin, const QString& text, const QString& defaultValue,
                          QString* result) override;
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString& text, int line,
                                  const QString& source) override;

private:
    void denyFeature(const QUrl& securityOrigin, Feature feature);

    Owner m_owner;
    bool m_abandoned = false;
    Leaving m_leaving = Leaving::Asked;
    std::shared_ptr<int> m_dialogs = std::make_shared<int>(0);
};

} // namespace nheliostat::browser
