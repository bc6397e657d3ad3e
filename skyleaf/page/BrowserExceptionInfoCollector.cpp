#include "page/BrowserExceptionInfoCollector.h"

#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/NHelioScriptIpcEvent.h"
#include "nheliostat/NHelioSubPage.h"
#include "page/OpenEvents.h"

#include <QPointer>

namespace {

constexpr int previewPageSubPageType = 48;

int countPreviewSubPages(const NHelioApplication& application)
{
    int count = 0;
    for (const NHelioMainWindow* window : application.mainWindows()) {
        if (!window->centralArea())
            continue;
        for (const NHelioAppPage* page : window->centralArea()->pages()) {
            for (const NHelioSubPage* subPage : page->subPages()->all())
                count += subPage->pageType() == previewPageSubPageType ? 1 : 0;
        }
    }
    return count;
}

} // namespace

void BrowserExceptionInfoCollector::installOnce()
{
    static QPointer<BrowserExceptionInfoCollector> collector;
    NHelioApplication* application = NHelioApplication::instance();
    QObject* hub = application ? application->scriptIpcEventHub() : nullptr;
    if (collector || !hub)
        return;
    collector = new BrowserExceptionInfoCollector(application);
    hub->installEventFilter(collector);
}

bool BrowserExceptionInfoCollector::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == static_cast<QEvent::Type>(NHelioScriptIpcEvent::eventType) &&
        static_cast<NHelioScriptIpcEvent*>(event)->kind() == NHelioScriptIpcEvent::browserException) {
        const NHelioApplication* application = NHelioApplication::instance();
        const int count = application ? countPreviewSubPages(*application) : 0;
        if (count > 0)
            openevents::postCrashInfo(count);
    }
    return QObject::eventFilter(watched, event);
}
