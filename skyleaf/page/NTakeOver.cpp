#include "page/NTakeOver.h"

#include "base/NDocsLog.h"
#include "base/NDomains.h"
#include "offline/NDOPResourceManager.h"
#include "page/NCefPreloadClient.h"
#include "page/OpenEvents.h"
#include "page/TakeOverScript.h"
#include "proxy/NCloudDocsRecordManager.h"
#include "proxy/NDOPConfig.h"
#include "zeolite/NxWebViewContainer.h"

using NDocsOfflinePage::NDOPConfig;
using NDocsOfflinePage::NDOPResourceManager;

bool NTakeOver::check(NxWebViewContainer* container, const NTakeOverDocument& document)
{
    constexpr auto operation = "NHelioCloudDocsPage::_checkPreloadDocFramework";
    if (!m_isPrepared || !container || !NDOPConfig::instance().isDopEnabled(document.officeType)) {
        ndocslog::info(QStringLiteral("_checkPreloadDocFramework fail"), operation);
        return m_isUsed;
    }
    if (m_isChecked) {
        ndocslog::info(QStringLiteral("_checkPreloadDocFramework already check"), operation);
        return m_isUsed;
    }
    m_isChecked = true;
    const QString reason = mismatch(*container, document);
    if (reason.isEmpty()) {
        ndocslog::info(QStringLiteral("_checkPreloadDocFramework success"), operation);
        m_isUsed = true;
    } else {
        container->clearLocalResourceCache();
        ndocslog::info(QStringLiteral("_checkPreloadDocFramework ") + reason, operation);
    }
    return m_isUsed;
}

/** Why the front end of the container cannot show the document; empty when it can. */
QString NTakeOver::mismatch(const NxWebViewContainer& container, const NTakeOverDocument& document) const
{
    if (!container.property(ncefpreload::docFrameworkProperty).toBool())
        return QStringLiteral("PreloadDocFramework not enable");
    const QString domain = container.property(ncefpreload::domainProperty).toString();
    if (domain.compare(ndomains::url(QStringLiteral("quill")), Qt::CaseInsensitive) != 0)
        return QStringLiteral("preloadDomain not match");
    const QString officeType = container.property(ncefpreload::officeTypeProperty).toString();
    if (officeType.isEmpty() || officeType != document.officeType)
        return QStringLiteral("officetype not match");

    const QString current = container.property(ncefpreload::frontVerProperty).toString();
    const NCloudDocsRecordManager* records = NCloudDocsRecordManager::instance();
    const EnvConfigRecord record =
        records ? records->retrieveEnvConfigRecord(document.fileId) : EnvConfigRecord();
    const QString recorded = record.isUsable() ? record.frontVer : QString();
    if (current.isEmpty() || current.compare(recorded, Qt::CaseInsensitive) == 0)
        return {};
    return QStringLiteral("frontVer not match, record is %1, current is %2").arg(recorded, current);
}

void NTakeOver::run(NxWebViewContainer& container, const NTakeOverDocument& document)
{
    m_isDone = true;
    openevents::post(QStringLiteral("docs_localproxy_dop_preloaddocframework"),
                     {{QStringLiteral("url"), document.url},
                      {QStringLiteral("officetype"), document.officeType},
                      {QStringLiteral("traceid"), document.traceId},
                      {QStringLiteral("reportver"), QStringLiteral("1.0")}});
    const QVariant injectList = container.property(ncefpreload::injectArrayProperty);
    container.executeScript(takeoverscript::script(takeoverscript::relativeUrl(document.url),
                                                   NDOPResourceManager::instance()->injectScriptFor(
                                                       document.injectId, document.officeType, injectList)));
}

void NTakeOver::end()
{
    m_isChecked = true;
    m_isUsed = false;
}
