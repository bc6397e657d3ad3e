#include "page/NOpenTelemetry.h"

#include "base/NClock.h"
#include "page/NDocumentLoad.h"
#include "page/OpenEvents.h"
#include "proxy/NDOPConfig.h"

namespace {

// How many time points there are once each is known.
constexpr int openStartPoints = 2;
constexpr int allPoints = 3;

} // namespace

void NOpenTelemetry::noteOpenStart(qint64 startNs)
{
    if (startNs > 0)
        m_timePoints << startNs << nclock::monotonicNs();
}

void NOpenTelemetry::noteBrowserCreated()
{
    if (m_timePoints.size() == openStartPoints)
        m_timePoints.append(nclock::monotonicNs());
    else if (m_timePoints.size() == allPoints)
        m_timePoints.last() = nclock::monotonicNs();
}

void NOpenTelemetry::postPrecreate(bool init, const PageStage& stage, const NDocumentLoad& load) const
{
    openevents::Precreate event;
    event.entry = stage.preInitEntry;
    event.init = init;
    event.used = stage.loadCalled;
    event.traceId = load.traceId();
    event.officeType = load.officeType();
    event.elapsedMs = m_sinceConstruction.elapsed();
    openevents::post(QStringLiteral("docs_cloud_precreate"), openevents::precreateFields(event));
}

void NOpenTelemetry::postStep(const QString& step, const PageStage& stage, const NDocumentLoad& load,
                              const QString& browserUrl, int errorCode, const QString& errorMessage) const
{
    openevents::OpenStep event;
    event.step = step;
    event.traceId = load.traceId();
    event.notifyUrl = load.url();
    event.loaded = stage.loaded;
    event.preInited = stage.preInited;
    event.officeType = load.officeType();
    event.errorCode = errorCode;
    event.errorMessage = errorMessage;
    event.browserUrl = browserUrl;
    openevents::post(QStringLiteral("docs_cloud_open"), openevents::openStepFields(event));
}

void NOpenTelemetry::postOpenTime(const NDocumentLoad& load) const
{
    const openevents::OpenTime event{&m_steps, m_loadStartMs, load.url(), load.officeType(), load.traceId()};
    openevents::post(QStringLiteral("docs_cloud_opentime"), openevents::openTimeFields(event));
}

void NOpenTelemetry::postMemoryRelease(const QString& action, const NDocumentLoad& load) const
{
    const QString package = NDocsOfflinePage::NDOPConfig::instance().packageName(load.officeType());
    openevents::post(QStringLiteral("memory_release_start"),
                     {{QStringLiteral("comp"), package}, {QStringLiteral("action"), action}});
}

void NOpenTelemetry::postPerformance(const QString& browserUrl)
{
    constexpr int performanceProbability = 1000;
    if (m_timePoints.size() != allPoints || browserUrl.isEmpty() ||
        browserUrl == QLatin1String("about:blank"))
        return;
    openevents::post(QStringLiteral("performance_heliostat_openclouddoctime"),
                     openevents::performanceFields(m_timePoints, nclock::monotonicNs()),
                     performanceProbability);
    m_timePoints.clear();
}
