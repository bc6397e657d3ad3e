#pragma once

#include "nheliostat/NHelioSubPage.h"

/** Draws the tab of a cloud document. */
class NxCloudDocsTabDelegate : public NHelioBrowserTabDelegate
{
    Q_OBJECT
public:
    NxCloudDocsTabDelegate(QObject* parent, NHelioBrowserWidgetBase* browser, NHelioPage* page);

    /** The icon of the page's file type, else the site's, else a transparent one. */
    QIcon getIcon(qreal devicePixelRatio) const override;

public Q_SLOTS:
    void onSetBrowser(NHelioBrowserWidgetBase* browser);

private:
    QPointer<NHelioPage> m_page;
    mutable QIcon m_defaultIcon;
};
