#include "proxy/NConfigCentreValues.h"

#include "base/NReadOnce.h"
#include "nrt/product.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NDomainMgr.h"
#include "zeolite/NFpccomb.h"

#include <cmath>
#include <limits>

namespace nconfigvalues {
namespace {

constexpr int addOnGroup = 60;
constexpr int prerequestItem = 57911;
constexpr int delayedLoadItem = 59777;
constexpr int versionCheckItem = 62377;
constexpr int proxyResetItem = 60994;
constexpr int protocolsItem = 64146;
constexpr int preloadingItem = 59743;
constexpr int openFrequencyItem = 55884;
constexpr int parallelCloseItem = 54887;

NFpccomb* centre()
{
    NCoreApplication* core = NCoreApplication::instance();
    return core ? core->getFpccomb() : nullptr;
}

bool isEnabled(int number)
{
    return item(number).value(QLatin1String("enabled")).toBool(false);
}

/** A number of the item, fraction dropped; `fallback` when there is none or it fits no int. */
int integer(int number, const char* key, int fallback)
{
    const QJsonValue value = item(number).value(QLatin1String(key));
    if (!value.isDouble())
        return fallback;
    const double whole = std::trunc(value.toDouble());
    if (whole < double(std::numeric_limits<int>::min()) || whole > double(std::numeric_limits<int>::max()))
        return fallback;
    return static_cast<int>(whole);
}

/** As `integer`, with values below 1 counting as missing. */
int positiveInteger(int number, const char* key, int fallback)
{
    const int value = integer(number, key, fallback);
    return value < 1 ? fallback : value;
}

bool readSyncAssist()
{
    NCoreApplication* core = NCoreApplication::instance();
    const NDomainMgr* domains = core ? core->getDomainMgr() : nullptr;
    constexpr quint32 accountCapability = 0x40000;
    if ((domains && domains->isIntranet()) || nrt::kcmc::support(QStringLiteral("IntranetVersion")) ||
        zeolite::isSupported(accountCapability)) {
        return false;
    }
    if (nrt::kcmc::boolValue(QStringLiteral("CooperationSyncAssist"), QStringLiteral("force")))
        return true;
    if (!nrt::product::getFuncSwitchState(QStringLiteral("isSupportShareAndCooperation"), true))
        return false;
    return nrt::product::getFuncSwitchState(QStringLiteral("useSyncAssist"), true) ||
           nrt::product::getFuncSwitchState(QStringLiteral("useSyncAssistV2"), true);
}

} // namespace

QJsonObject item(int number)
{
    const NFpccomb* configuration = centre();
    if (!configuration)
        return {};
    const QList<NFpccombData> data = configuration->getData(addOnGroup, number);
    return data.isEmpty() ? QJsonObject() : data.first().jsonObject();
}

int unusedPageLifetimeMs()
{
    static NReadOnce<int> minutes([] { return positiveInteger(prerequestItem, "unsed_page_lifetime", 10); });
    constexpr int millisecondsPerMinute = 60000;
    return qMin(minutes(), std::numeric_limits<int>::max() / millisecondsPerMinute) * millisecondsPerMinute;
}

qint64 responseDataLifetimeMs()
{
    static NReadOnce<int> seconds(
        [] { return positiveInteger(prerequestItem, "repsonse_data_lifetime", 3); });
    return qint64(seconds()) * 1000;
}

bool isDelayedLoadOn()
{
    static NReadOnce<bool> on([] { return isEnabled(delayedLoadItem); });
    return on();
}

int delayIntervalMs()
{
    static NReadOnce<int> interval([] { return integer(delayedLoadItem, "delay_interval", 150); });
    return qMax(0, interval());
}

bool isVersionCheckOn()
{
    static NReadOnce<bool> on([] { return isEnabled(versionCheckItem); });
    return on();
}

int versionCheckTimeoutMs()
{
    static NReadOnce<int> interval(
        [] { return integer(versionCheckItem, "vcsRequestTimeoutInterval", 300); });
    return qMax(0, interval());
}

int versionCheckCacheDays()
{
    static NReadOnce<int> days([] { return integer(versionCheckItem, "vcsCacheExpiredDays", 30); });
    return days();
}

bool isPreloadingOn()
{
    const NFpccomb* configuration = centre();
    if (!configuration || !configuration->hasInitFinished(addOnGroup))
        return false;
    static NReadOnce<bool> on([] { return isEnabled(preloadingItem); });
    return on();
}

OpenFrequency openFrequency()
{
    static NReadOnce<OpenFrequency> frequency([] {
        const OpenFrequency defaults;
        OpenFrequency read;
        read.daysThreshold = integer(openFrequencyItem, "daysThreshold", defaults.daysThreshold);
        read.highFrequencyThreshold =
            integer(openFrequencyItem, "highFrequencyThreshold", defaults.highFrequencyThreshold);
        read.mediumFrequencyThreshold =
            integer(openFrequencyItem, "mediumFrequencyThreshold", defaults.mediumFrequencyThreshold);
        read.recordExpiredDays = integer(openFrequencyItem, "recordExpiredDays", defaults.recordExpiredDays);
        return read;
    });
    return frequency();
}

bool isProxyResetOn()
{
    static NReadOnce<bool> on([] { return isEnabled(proxyResetItem); });
    return on();
}

bool isSyncAssistOn()
{
    static NReadOnce<bool> on(&readSyncAssist);
    return on();
}

bool isParallelCloseOn()
{
    static NReadOnce<bool> isOn(
        [] { return item(parallelCloseItem).value(QLatin1String("parallelCloseCollaboration")).toBool(); });
    return isOn();
}

bool areSupportedProtocolsOn()
{
    const QJsonObject protocols = item(protocolsItem);
    return protocols.isEmpty() || protocols.value(QLatin1String("enabled")).toBool(false);
}

} // namespace nconfigvalues
