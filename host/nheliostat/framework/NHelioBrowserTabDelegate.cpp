#include "nheliostat/NHelioSubPage.h"

#include "nheliostat/NHelioBrowserWidgetBase.h"

NHelioBrowserTabDelegate::NHelioBrowserTabDelegate(QObject* parent, NHelioBrowserWidgetBase* browser)
    : NHelioTabDelegate(parent)
{
    initDelegate(browser);
}

void NHelioBrowserTabDelegate::initDelegate(NHelioBrowserWidgetBase* browser)
{
    if (browser == m_browser)
        return;
    if (m_browser)
        disconnect(m_browser, nullptr, this, nullptr);
    m_browser = browser;
    if (browser)
        connect(browser, &NHelioBrowserWidgetBase::faviconChange, this,
                &NHelioBrowserTabDelegate::onFaviconChange);
}

QIcon NHelioBrowserTabDelegate::getIcon(qreal devicePixelRatio) const
{
    return m_favicon.isNull() ? NHelioTabDelegate::getIcon(devicePixelRatio) : m_favicon;
}

void NHelioBrowserTabDelegate::onFaviconChange(const QList<QIcon>& icons)
{
    m_favicon = icons.isEmpty() ? QIcon() : icons.first();
    Q_EMIT iconChanged();
}
