#include "proxy/NProxyDecisionReport.h"

#include "nrt/product.h"
#include "proxy/NDOPConfig.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NDcInfoC.h"

namespace {

QString text(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

} // namespace

void reportProxyDecision(const NProxyDecisionStep& step)
{
    NCoreApplication* core = NCoreApplication::instance();
    NDcInfoC* collection = core ? core->getDcInfo() : nullptr;
    if (!collection)
        return;
    NDcFields fields{
        {QStringLiteral("trace_id"), step.traceId},
        {QStringLiteral("step_name"), step.stepName},
        {QStringLiteral("plugin_state"), step.pluginState},
        {QStringLiteral("front_ver"), step.frontVer},
        {QStringLiteral("error_msg"), step.errorMessage},
        {QStringLiteral("plugin_name"), step.pluginName},
        {QStringLiteral("office_type"), step.officeType},
        {QStringLiteral("notify_url"), step.notifyUrl},
        {QStringLiteral("master_switch"), text(NDocsOfflinePage::isDopMasterSwitchOn())},
        {QStringLiteral("multi_lang"), text(nrt::product::isEnableMultiLang())},
        {QStringLiteral("report_ver"), QStringLiteral("1.3")},
        {QStringLiteral("plugin_version"), step.pluginVersion},
    };
    if (step.resetFrontVer)
        fields.insert(QStringLiteral("reset_front_ver"), *step.resetFrontVer);
    collection->postGeneralEvent(QStringLiteral("docs_localproxy_dop_result"), fields, 0, 0, 1, true);
}
