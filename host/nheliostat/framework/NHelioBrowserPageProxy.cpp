#include "nheliostat/NHelioCommonJSAPI.h"

#include "nheliostat/framework/NHelioBrowserDocDriveApiHandler.h"

NHelioBrowserPageProxy::NHelioBrowserPageProxy(NHelioBrowserWidgetBase* browser)
    : m_browser(browser)
{
}

QObject* NHelioBrowserPageProxy::generateHandler(const QString& name, QObject* parent,
                                                 NxWebViewAsynJSObject* scriptObject)
{
    if (!m_browser || name != QLatin1String("NHelioBrowserDocDriveApiHandler"))
        return nullptr;
    return new NHelioBrowserDocDriveApiHandler(parent, scriptObject);
}
