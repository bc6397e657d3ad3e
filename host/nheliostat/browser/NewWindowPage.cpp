#include "nheliostat/browser/NewWindowPage.h"

#include <QTimer>

namespace nheliostat::browser {

namespace {

/** A window opened without a URL may be given one by its opener; not for longer than this. */
constexpr int lifeMs = 10000;

} // namespace

NewWindowPage::NewWindowPage(QWebEngineProfile* profile, QObject* parent)
    : QWebEnginePage(profile, parent)
{
    QTimer::singleShot(lifeMs, this, &QObject::deleteLater);
}

bool NewWindowPage::acceptNavigationRequest(const QUrl& url, NavigationType, bool isMainFrame)
{
    if (!isMainFrame || m_requested || url.isEmpty() || url.scheme() == QLatin1String("about"))
        return false;
    m_requested = true;
    // Not from inside Chromium's question: the receiver may well destroy pages.
    QTimer::singleShot(0, this, [this, url] {
        Q_EMIT urlRequested(url);
        deleteLater();
    });
    return false;
}

} // namespace nheliostat::browser
