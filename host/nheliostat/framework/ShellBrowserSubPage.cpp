#include "nheliostat/framework/ShellBrowserSubPage.h"

#include "nheliostat/framework/ShellBrowserPage.h"

ShellBrowserSubPage::ShellBrowserSubPage(NHelioSubPages* subPages, NHelioBrowserWidgetBase* browser)
    : NHelioSubPage(subPages)
    , m_browser(browser)
{
}

void ShellBrowserSubPage::setBrowser(NHelioBrowserWidgetBase* browser)
{
    m_browser = browser;
    if (m_delegate)
        m_delegate->initDelegate(browser);
}

bool ShellBrowserSubPage::getWorkAreaRecoverItem(NHelioWorkAreaRecoverItem* item)
{
    const auto* shown = qobject_cast<const ShellBrowserPage*>(page());
    const QString url = shown ? shown->getCurrentUrl() : QString();
    if (url.isEmpty() || url.compare(QLatin1String("about:blank"), Qt::CaseInsensitive) == 0)
        return false;
    if (!NHelioSubPage::getWorkAreaRecoverItem(item))
        return false;
    item->params.insert(QStringLiteral("url"), url);
    return true;
}

NHelioTabDelegate* ShellBrowserSubPage::createTabDelegate(QObject* parent)
{
    m_delegate = new NHelioBrowserTabDelegate(parent, m_browser);
    return m_delegate;
}
