#include "page/NxCloudDocsTabDelegate.h"

#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "zeolite/NxLoggerLite.h"

#include <QPixmap>

namespace {

QString getOnLineSuffix(const QString& suffix)
{
    if (suffix.isEmpty()) {
        NxLoggerLite::writeInfo(QStringLiteral("skylaef"),
                                QStringLiteral("%1, suffix is empty")
                                    .arg(QStringLiteral("`anonymous-namespace'::getOnLineSuffix")));
    }
    return suffix;
}

/** Keeps the place of an icon. */
QIcon emptyIcon(qreal devicePixelRatio)
{
    constexpr int side = 16;
    QPixmap pixmap(QSize(side, side) * devicePixelRatio);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    pixmap.fill(QColor(255, 255, 255, 0));
    return QIcon(pixmap);
}

bool isAlive(const NHelioPage* page)
{
    const auto* appPage = qobject_cast<const NHelioAppPage*>(page);
    return appPage && appPage->isAlive();
}

} // namespace

NxCloudDocsTabDelegate::NxCloudDocsTabDelegate(QObject* parent, NHelioBrowserWidgetBase* browser,
                                               NHelioPage* page)
    : NHelioBrowserTabDelegate(parent, browser)
    , m_page(page)
{
}

QIcon NxCloudDocsTabDelegate::getIcon(qreal devicePixelRatio) const
{
    QIcon icon;
    if (isAlive(m_page) && m_page->property("suffix").isValid())
        icon = helioFileIcon(getOnLineSuffix(m_page->property("suffix").toString()));
    if (icon.isNull())
        icon = NHelioBrowserTabDelegate::getIcon(devicePixelRatio);
    if (!icon.isNull())
        return icon;
    if (m_defaultIcon.isNull())
        m_defaultIcon = emptyIcon(devicePixelRatio);
    return m_defaultIcon;
}

void NxCloudDocsTabDelegate::onSetBrowser(NHelioBrowserWidgetBase* browser)
{
    if (browser)
        initDelegate(browser);
}
