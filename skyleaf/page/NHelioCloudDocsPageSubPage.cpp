#include "page/NHelioCloudDocsPage.h"

#include "base/NDocsLog.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "page/NxCloudDocsSubPage.h"
#include "zeolite/NxLoggerLite.h"

NHelioSubPage* NHelioCloudDocsPage::createSubPage(NHelioSubPages* subPages)
{
    if (!subPages) {
        NxLoggerLite::writeInfo(QStringLiteral("skylaef"),
                                QStringLiteral("%1, subPages is nullptr")
                                    .arg(QStringLiteral("NHelioCloudDocsPage::createSubPage")));
        return nullptr;
    }
    auto* subPage = new NxCloudDocsSubPage(subPages, m_browser);
    connect(subPage, &NHelioSubPage::subPageActived, this, &NHelioCloudDocsPage::onSubPageActived);
    connect(this, &NHelioCloudDocsPage::sigBrowserCreateSucceeded, subPage,
            &NxCloudDocsSubPage::onBrowserCreateSucceeded);
    return subPage;
}
