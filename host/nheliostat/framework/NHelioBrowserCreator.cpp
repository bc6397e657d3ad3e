#include "nheliostat/NHelioBrowserPageRoot.h"

#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "zeolite/NxLoggerLite.h"

bool NHelioBrowserCreator::isCreateSucceeded() const
{
    return !m_browser.isNull();
}

void NHelioBrowserCreator::deliver(NHelioBrowserWidgetBase* browser)
{
    if (!browser)
        return;
    if (m_browser) {
        NxLoggerLite::writeWarning(QStringLiteral("nheliostat"),
                                   QStringLiteral("a second browser was delivered; the first one stays"));
        return;
    }
    m_browser = browser;
    Q_EMIT createSucceeded(browser);
}
