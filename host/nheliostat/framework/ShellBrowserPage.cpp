#include "nheliostat/framework/ShellBrowserPage.h"

#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nheliostat/framework/ShellBrowserSubPage.h"
#include "zeolite/NxLoggerLite.h"

#include <QVBoxLayout>

namespace {

constexpr int chromiumBrowserType = 2;

bool isShownScheme(const QString& scheme)
{
    return scheme == QLatin1String("http") || scheme == QLatin1String("https") ||
           scheme == QLatin1String("file") || scheme == QLatin1String("about");
}

} // namespace

ShellBrowserPage::ShellBrowserPage(QWidget* parent)
    : NHelioBrowserPageRoot(parent)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    connect(browserCreator(), &NHelioBrowserCreator::createSucceeded, this,
            &ShellBrowserPage::onBrowserCreated);
    CreateHelioBrowserWidget(this, browserCreator(), chromiumBrowserType,
                             QStringLiteral("5D0C51A6-6B0D-4E0B-9F5D-1F1D0E9A7C11"),
                             QStringLiteral("browser_page"), 0);
}

QString ShellBrowserPage::pageTitle() const
{
    const QString title = m_browser ? m_browser->title() : QString();
    if (!title.isEmpty())
        return title;
    return m_url.host().isEmpty() ? tr("New page") : m_url.host();
}

NHelioSubPage* ShellBrowserPage::createSubPage(NHelioSubPages* subPages)
{
    m_subPage = new ShellBrowserSubPage(subPages, m_browser);
    return m_subPage;
}

void ShellBrowserPage::notify(const QString& text)
{
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || !isShownScheme(url.scheme())) {
        NxLoggerLite::writeWarning(QStringLiteral("nheliostat"),
                                   QStringLiteral("not a web address: %1").arg(text));
        return;
    }
    m_url = url;
    if (m_subPage)
        m_subPage->refreshIcon();
    if (m_loaded)
        showUrl();
}

bool ShellBrowserPage::recoverFiles(const QList<NHelioWorkAreaRecoverItem>& items, int strategy,
                                    NHelioSubPage* subPage)
{
    if (items.isEmpty())
        return false;
    notify(items.first().params.value(QStringLiteral("url")).toString());
    return !m_url.isEmpty() && NHelioBrowserPageRoot::recoverFiles(items, strategy, subPage);
}

void ShellBrowserPage::load()
{
    if (m_loaded)
        return;
    m_loaded = true;
    showUrl();
}

void ShellBrowserPage::refreshPage()
{
    if (m_browser)
        m_browser->reload();
}

QString ShellBrowserPage::getCurrentUrl() const
{
    return m_browser ? m_browser->currentUrl() : QString();
}

void ShellBrowserPage::onBrowserCreated(NHelioBrowserWidgetBase* browser)
{
    m_browser = browser;
    layout()->addWidget(browser);
    browser->setToolbarVisible(true);
    browser->setEnableStartupUrl(false);
    connect(browser, &NHelioBrowserWidgetBase::titleChanged, this, &ShellBrowserPage::onTitleChanged);
    connect(browser, &NHelioBrowserWidgetBase::windowDestroying, this, &ShellBrowserPage::closePage,
            Qt::QueuedConnection);
    connect(browser, &NHelioBrowserWidgetBase::closeBrowserPage, this, &ShellBrowserPage::closePage,
            Qt::QueuedConnection);
    if (m_subPage)
        m_subPage->setBrowser(browser);
    if (m_loaded)
        showUrl();
}

void ShellBrowserPage::onTitleChanged(const QString& title)
{
    if (m_subPage)
        m_subPage->setWindowTitle(title);
}

void ShellBrowserPage::closePage()
{
    close();
}

void ShellBrowserPage::showUrl()
{
    if (!m_browser || m_url.isEmpty())
        return;
    if (!m_browser->webViewContainer())
        m_browser->initWebView();
    m_browser->load(m_url);
}
