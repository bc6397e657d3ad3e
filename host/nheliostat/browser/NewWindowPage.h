#pragma once

#include <QWebEnginePage>

namespace nheliostat::browser {

/**
 * Stands in for a window that a page opens, until its URL is known; it shows nothing and destroys itself.
 * User-interface thread.
 */
class NewWindowPage final : public QWebEnginePage
{
    Q_OBJECT
public:
    NewWindowPage(QWebEngineProfile* profile, QObject* parent);

Q_SIGNALS:
    void urlRequested(const QUrl& url);

protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override;

private:
    bool m_requested = false;
};

} // namespace nheliostat::browser
