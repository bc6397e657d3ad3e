#include "nheliostat/NHelioSubPage.h"

#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nheliostat/framework/FileIcon.h"

#include <QFileInfo>

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
    if (!browser)
        return;
    connect(browser, &NHelioBrowserWidgetBase::faviconChange, this,
            &NHelioBrowserTabDelegate::onFaviconChange);
    connect(browser, &NHelioBrowserWidgetBase::titleChanged, this, &NHelioBrowserTabDelegate::onTitleChanged);
    // A tab that is made anew, as by a move, has what the browser shows already.
    m_favicon = browser->favicon();
    onTitleChanged(browser->title());
}

QIcon NHelioBrowserTabDelegate::getIcon(qreal devicePixelRatio) const
{
    if (!m_favicon.isNull())
        return m_favicon;
    return m_titleIcon.isNull() ? NHelioTabDelegate::getIcon(devicePixelRatio) : m_titleIcon;
}

void NHelioBrowserTabDelegate::onFaviconChange(const QList<QIcon>& icons)
{
    m_favicon = icons.isEmpty() ? QIcon() : icons.first();
    Q_EMIT iconChanged();
}

void NHelioBrowserTabDelegate::onTitleChanged(const QString& title)
{
    // A web view that is released has no title; its tab keeps the icon.
    if (title.isEmpty())
        return;
    m_titleIcon = knownFileIcon(QFileInfo(title).suffix());
    Q_EMIT iconChanged();
}
