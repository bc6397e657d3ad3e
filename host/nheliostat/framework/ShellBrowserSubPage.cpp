#include "nheliostat/framework/ShellBrowserSubPage.h"

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

NHelioTabDelegate* ShellBrowserSubPage::createTabDelegate(QObject* parent)
{
    m_delegate = new NHelioBrowserTabDelegate(parent, m_browser);
    return m_delegate;
}
