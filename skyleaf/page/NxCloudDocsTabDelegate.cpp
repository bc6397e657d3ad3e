#include "page/NxCloudDocsTabDelegate.h"

#include "nheliostat/NHelioBrowserWidgetBase.h"

NxCloudDocsTabDelegate::NxCloudDocsTabDelegate(QObject* parent, NHelioBrowserWidgetBase* browser,
                                               NHelioPage* page)
    : NHelioBrowserTabDelegate(parent, browser)
    , m_page(page)
{
}

QIcon NxCloudDocsTabDelegate::getIcon(qreal devicePixelRatio) const
{
    const QIcon icon = NHelioBrowserTabDelegate::getIcon(devicePixelRatio);
    if (!icon.isNull())
        return icon;
    if (m_defaultIcon.isNull())
        m_defaultIcon = QIcon(QStringLiteral(":/icon_svg/VltDocsTabIcon.svg"));
    return m_defaultIcon;
}

void NxCloudDocsTabDelegate::onSetBrowser(NHelioBrowserWidgetBase* browser)
{
    if (browser)
        initDelegate(browser);
}
