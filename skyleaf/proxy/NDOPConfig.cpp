#include "proxy/NDOPConfig.h"

#include "base/NReadOnce.h"
#include "nrt/product.h"
#include "proxy/NCachedSwitches.h"
#include "proxy/NOfficeTypes.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NFpccomb.h"

#include <QUrlQuery>

#include <memory>

namespace NDocsOfflinePage {
namespace {

using ncachedswitches::Store;

constexpr int addOnGroup = 60;

bool readMasterSwitch(Store store, const QString& name)
{
    const bool on = ncachedswitches::read(ncachedswitches::entry(store), store, name, false);
    return on && !nrt::kentrycontrol::isEntryNeedHide(QStringLiteral("skyleaf/docoffline"));
}

} // namespace

NDOPConfig& NDOPConfig::instance()
{
    static NReadOnce<std::shared_ptr<NDOPConfig>> config(
        [] { return std::shared_ptr<NDOPConfig>(new NDOPConfig); });
    return *config();
}

NDOPConfig::NDOPConfig()
{
    initConfig();
    NCoreApplication* core = NCoreApplication::instance();
    NFpccomb* centre = core ? core->getFpccomb() : nullptr;
    if (centre && !centre->hasInitFinished(addOnGroup))
        centre->addInitFinishedWatch(addOnGroup, this, [this](qint64, qint64) { onFpccombInitFinish(); });
}

void NDOPConfig::onFpccombInitFinish()
{
    initConfig();
}

void NDOPConfig::initConfig()
{
    const QVariantMap accelerate = ncachedswitches::entry(Store::Accelerate);
    const QVariantMap offlineEdit = ncachedswitches::entry(Store::OfflineEdit);
    QHash<QString, Switches> table;
    const QStringList officeTypes = nofficetypes::codes();
    for (const QString& officeType : officeTypes) {
        const QString name = nofficetypes::packageName(officeType) + QStringLiteral("DOPSwitch");
        Switches switches;
        switches.offlineEdit = ncachedswitches::read(offlineEdit, Store::OfflineEdit, name, false);
        switches.dop = ncachedswitches::read(accelerate, Store::Accelerate, name, false);
        table.insert(officeType, switches);
    }
    const QWriteLocker locker(&m_lock);
    m_switches.swap(table);
}

NDOPConfig::Switches NDOPConfig::switchesOf(const QString& officeType) const
{
    const QReadLocker locker(&m_lock);
    return m_switches.value(officeType);
}

bool NDOPConfig::isDopEnabled(const QString& officeType) const
{
    return !officeType.isEmpty() && isDopMasterSwitchOn() && switchesOf(officeType).dop;
}

bool NDOPConfig::isOfflineEditEnabled(const QString& officeType) const
{
    return !officeType.isEmpty() && isOfflineEditMasterSwitchOn() && switchesOf(officeType).offlineEdit;
}

QString NDOPConfig::packageName(const QString& officeType) const
{
    return nofficetypes::packageName(officeType);
}

QString NDOPConfig::pluginName(const QString& officeType) const
{
    return nofficetypes::pluginName(officeType);
}

bool NDOPConfig::isPreopenSupported(const QString& officeType) const
{
    return nofficetypes::isPreopenSupported(officeType);
}

bool NDOPConfig::isSsrSupported(const QString& officeType) const
{
    return nofficetypes::isSsrSupported(officeType);
}

bool NDOPConfig::isHybridUrl(const QUrl& url) const
{
    if (url.isEmpty() || !url.isValid() || !url.hasQuery())
        return false;
    const QUrlQuery query(url);
    const QString officeType = query.queryItemValue(QStringLiteral("officeType")).toLower();
    const QString openEnv = query.queryItemValue(QStringLiteral("openEnv")).toLower();
    return nofficetypes::codes().contains(officeType) && openEnv == QLatin1String("hybrid");
}

bool NDOPConfig::forceProxy() const
{
    return isDopMasterSwitchOn() &&
           ncachedswitches::read(ncachedswitches::entry(Store::Accelerate), Store::Accelerate,
                                 QStringLiteral("forceProxy"), true);
}

QString NDOPConfig::officeTypeOfUrl(const QString& url) const
{
    const QUrl parsed(url);
    if (url.isEmpty() || !parsed.isValid() || !parsed.hasQuery())
        return {};
    return QUrlQuery(parsed).queryItemValue(QStringLiteral("officeType"));
}

QString NDOPConfig::officeTypeCode(const QString& fileType) const
{
    return nofficetypes::codeOfFileType(fileType);
}

bool isDopMasterSwitchOn()
{
    static NReadOnce<bool> on(
        [] { return readMasterSwitch(Store::Accelerate, QStringLiteral("DOPMasterSwitch")); });
    return on();
}

bool isOfflineEditMasterSwitchOn()
{
    static NReadOnce<bool> on(
        [] { return readMasterSwitch(Store::OfflineEdit, QStringLiteral("DOPOfflineEditMasterSwitch")); });
    return on();
}

bool isDocsPrintSupported()
{
    return nrt::product::getFuncSwitchState(QStringLiteral("isSupportVltDocsPrint"), true);
}

} // namespace NDocsOfflinePage
