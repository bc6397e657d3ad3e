#include "proxy/NFpcCombCloudMgr.h"

#include "base/NReadOnce.h"
#include "nrt/kcc.h"
#include "proxy/NCloudFpccombProxy.h"

#include <memory>

NFpcCombCloudMgr& NFpcCombCloudMgr::instance()
{
    static NReadOnce<std::shared_ptr<NFpcCombCloudMgr>> manager(
        [] { return std::shared_ptr<NFpcCombCloudMgr>(new NFpcCombCloudMgr); });
    return *manager();
}

NFpcCombCloudMgr::NFpcCombCloudMgr()
{
    qRegisterMetaType<NFpcCombConfigCenterInfo>("NFpcCombConfigCenterInfo");
}

void NFpcCombCloudMgr::initProxy(const NFpcCombConfigCenterInfo& info)
{
    if (!info.isValid())
        return;
    QMetaObject::invokeMethod(this, "onInitFpccombCloudProxy", Qt::QueuedConnection,
                              Q_ARG(NFpcCombConfigCenterInfo, info));
}

bool NFpcCombCloudMgr::getValue(const NFpcCombConfigCenterInfo& info, bool defaultValue)
{
    if (!info.isValid())
        return defaultValue;
    initProxy(info);
    return nrt::kcc::value(info.keyPrefix + info.name, defaultValue).toBool();
}

void NFpcCombCloudMgr::onInitFpccombCloudProxy(const NFpcCombConfigCenterInfo& info)
{
    const QString key = QStringLiteral("%1_%2").arg(info.groupId).arg(info.funcId);
    if (m_proxies.contains(key))
        return;
    auto* proxy = new NCloudFpccombProxy(this);
    proxy->init(info.groupId, info.funcId, info.keyPrefix);
    m_proxies.insert(key, proxy);
}
