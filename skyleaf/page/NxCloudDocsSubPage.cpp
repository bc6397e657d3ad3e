#include "page/NxCloudDocsSubPage.h"

#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "page/NxCloudDocsTabDelegate.h"

NxCloudDocsSubPage::NxCloudDocsSubPage(NHelioSubPages* subPages, NHelioBrowserWidgetBase* browser)
    : NHelioSubPage(subPages)
    , m_browser(browser)
{
}

void NxCloudDocsSubPage::activate(const QString& name, bool flag)
{
    NHelioTabAssistant* assistant = tabAssistant();
    if (assistant && assistant->currentSubPage() && assistant->currentSubPage() != this)
        assistant->activate(this);
    else
        NHelioSubPage::activate(name, flag);
}

NHelioTabDelegate* NxCloudDocsSubPage::createTabDelegate(QObject* parent)
{
    auto* delegate = new NxCloudDocsTabDelegate(parent, m_browser, page());
    connect(this, &NxCloudDocsSubPage::sigBrowserCreateSucceeded, delegate,
            &NxCloudDocsTabDelegate::onSetBrowser);
    return delegate;
}

void NxCloudDocsSubPage::onBrowserCreateSucceeded(NHelioBrowserWidgetBase* browser)
{
    if (m_browser || !browser)
        return;
    m_browser = browser;
    Q_EMIT sigBrowserCreateSucceeded(browser);
}
