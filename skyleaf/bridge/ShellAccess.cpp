#include "bridge/ShellAccess.h"

#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/NHelioPage.h"

namespace shellaccess {

NHelioCloudSvrProxy* cloudService()
{
    const NHelioApplication* application = NHelioApplication::instance();
    return application ? application->cloudSvrProxy() : nullptr;
}

NHelioUserInfo user()
{
    NHelioUserInfo info;
    if (const NHelioCloudSvrProxy* proxy = cloudService())
        proxy->currentUserInfo(info);
    return info;
}

NHelioMainWindow* windowOf(const QObject* object)
{
    const NHelioApplication* application = NHelioApplication::instance();
    return application && object ? application->findRelativeHelioMainWindow(object) : nullptr;
}

NHelioCentralArea* centralAreaOf(const QObject* object)
{
    const NHelioMainWindow* window = windowOf(object);
    return window ? window->centralArea() : nullptr;
}

NHelioTab* tabOf(const NHelioPage* page, const NHelioMainWindow* window)
{
    const NHelioTabBar* tabs = window ? window->tabBar() : nullptr;
    NHelioSubPage* subPage = page ? page->initialSubPage() : nullptr;
    return tabs && subPage ? tabs->tabOf(subPage) : nullptr;
}

void reportOpenStart(const QString& source, int virtualType)
{
    const NHelioApplication* application = NHelioApplication::instance();
    if (NHelioCloudCollectInfoMgr* collector = application ? application->getCloudCollectInfoMgr() : nullptr)
        collector->sendCloudFileOpen(user().userId, source, QStringLiteral("openStart"), virtualType);
}

} // namespace shellaccess
