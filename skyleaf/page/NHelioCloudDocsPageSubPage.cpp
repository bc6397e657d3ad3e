#include "page/NHelioCloudDocsPage.h"

#include "bridge/NHelioCloudDocsAsynJsObj.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "page/NxCloudDocsSubPage.h"
#include "zeolite/JsonHelper.h"
#include "zeolite/NxJSApiEventHandler.h"
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
    connect(this, &NHelioCloudDocsPage::webFileReady, subPage, &NxCloudDocsSubPage::onWebFileReady);
    connect(this, &NHelioCloudDocsPage::sig_menuItemDataReady, subPage,
            &NxCloudDocsSubPage::onMenuItemDataReady);
    return subPage;
}

void NHelioCloudDocsPage::notifyMenuItem(const QString& id, const QJsonValue& value)
{
    NxJSApiEventHandler* events = m_jsObj ? m_jsObj->eventHandler() : nullptr;
    if (events)
        events->raiseEvent(
            QStringLiteral("menuItemChosen"),
            JsonHelper::convertQJsonToString({{QStringLiteral("id"), id}, {QStringLiteral("value"), value}}));
}
