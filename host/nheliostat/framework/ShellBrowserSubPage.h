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
    NHelioTabDelegate* createTabDelegate(QObject* parent) override;

private:
    QPointer<NHelioBrowserWidgetBase> m_browser;
    QPointer<NHelioBrowserTabDelegate> m_delegate;
};
