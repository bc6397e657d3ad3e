#pragma once

#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nheliostat/NHelioSubPage.h"

/** The sub page of a plain browser page: its tab shows the site's icon. */
class ShellBrowserSubPage final : public NHelioSubPage
{
    Q_OBJECT
public:
    ShellBrowserSubPage(NHelioSubPages* subPages, NHelioBrowserWidgetBase* browser);

    /** The browser, when it comes after the tab. */
    void setBrowser(NHelioBrowserWidgetBase* browser);
    bool supportsStandaloneWindow() const override { return true; }
    bool supportsWorkArea() const override { return true; }
    /** False while the page shows no address. */
    bool getWorkAreaRecoverItem(NHelioWorkAreaRecoverItem* item) override;
    bool isDiscardable() const override { return !m_browser || m_browser->isDiscardable(); }
    NHelioTabDelegate* createTabDelegate(QObject* parent) override;

private:
    QPointer<NHelioBrowserWidgetBase> m_browser;
    QPointer<NHelioBrowserTabDelegate> m_delegate;
};
