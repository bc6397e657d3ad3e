#include "page/NHelioCloudDocsPage.h"

#include "base/NClock.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "page/OpenEvents.h"
#include "proxy/NDOPConfig.h"

// What the page tells data collection about an open.

void NHelioCloudDocsPage::postPrecreateEvent(bool init) const
{
    openevents::Precreate event;
    event.entry = m_preInitEntry;
    event.init = init;
    event.used = m_loadCalled;
    event.traceId = m_traceId;
    event.officeType = m_officeType;
    event.elapsedMs = m_sinceConstruction.elapsed();
    openevents::post(QStringLiteral("docs_cloud_precreate"), openevents::precreateFields(event));
}

void NHelioCloudDocsPage::postOpenStep(const QString& step, const QString& browserUrl, int errorCode,
                                       const QString& errorMessage) const
{
    openevents::OpenStep event;
    event.step = step;
    event.traceId = m_traceId;
    event.notifyUrl = m_notify_URL;
    event.loaded = m_loaded;
    event.preInited = m_preInited;
    event.officeType = m_officeType;
    event.errorCode = errorCode;
    event.errorMessage = errorMessage;
    event.browserUrl = browserUrl;
    openevents::post(QStringLiteral("docs_cloud_open"), openevents::openStepFields(event));
}

void NHelioCloudDocsPage::postOpenTime() const
{
    const openevents::OpenTime event{&m_steps, m_loadStartMs, m_notify_URL, m_officeType, m_traceId};
    openevents::post(QStringLiteral("docs_cloud_opentime"), openevents::openTimeFields(event));
}

void NHelioCloudDocsPage::postMemoryRelease(const QString& action) const
{
    const QString package = NDocsOfflinePage::NDOPConfig::instance().packageName(m_officeType);
    openevents::post(QStringLiteral("memory_release_start"),
                     {{QStringLiteral("comp"), package}, {QStringLiteral("action"), action}});
}

void NHelioCloudDocsPage::postPerformance()
{
    constexpr int performanceProbability = 1000;
    const QString url = m_browser ? m_browser->currentUrl() : QString();
    if (m_openTimePoints.size() != 3 || url.isEmpty() || url == QLatin1String("about:blank"))
        return;
    openevents::post(QStringLiteral("performance_heliostat_openclouddoctime"),
                     openevents::performanceFields(m_openTimePoints, nclock::monotonicNs()),
                     performanceProbability);
    m_openTimePoints.clear();
}
