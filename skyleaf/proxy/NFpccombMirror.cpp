#include "proxy/NFpccombMirror.h"

#include "base/NJsonNumber.h"
#include "nrt/kcc.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NFpccomb.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonObject>

namespace {

NFpccomb* centre()
{
    NCoreApplication* core = NCoreApplication::instance();
    return core ? core->getFpccomb() : nullptr;
}

} // namespace

namespace nfpccombvalues {

QVariant storable(const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::Bool:
        return value.toBool();
    case QJsonValue::Double:
        return QVariant::fromValue<qint64>(wholeNumber(value, 0));
    case QJsonValue::String:
        return value.toString();
    case QJsonValue::Object:
        return value.toObject();
    case QJsonValue::Array:
        return value.toArray();
    default:
        return {};
    }
}

int projectType(int groupId)
{
    if (groupId == 119)
        return 1;
    return groupId == 128 ? 2 : 0;
}

} // namespace nfpccombvalues

NFpccombMirror::NFpccombMirror(QObject* parent)
    : QObject(parent)
{
    if (QCoreApplication* application = QCoreApplication::instance())
        connect(application, &QCoreApplication::aboutToQuit, this, &NFpccombMirror::onAppQuit);
}

bool NFpccombMirror::init(int groupId, int funcId, const QString& keyPrefix, bool watch)
{
    NFpccomb* configuration = centre();
    if (groupId < 1 || funcId < 1 || keyPrefix.isEmpty() || !configuration)
        return false;
    m_groupId = groupId;
    m_funcId = funcId;
    m_keyPrefix = keyPrefix;
    m_watch = watch;
    if (configuration->hasInitFinished(groupId)) {
        synchronise();
    } else {
        configuration->addInitFinishedWatch(
            groupId, this, [this](qint64 group, qint64 item) { onWatchFpcDataInitEvent(group, item); });
    }
    return true;
}

void NFpccombMirror::onWatchFpcDataInitEvent(qint64 groupId, qint64 funcId)
{
    Q_UNUSED(funcId)
    NFpccomb* configuration = centre();
    if (!configuration || groupId != m_groupId)
        return;
    configuration->removeInitFinishedWatch(m_groupId, this);
    synchronise();
}

void NFpccombMirror::synchronise()
{
    copyValues();
    NFpccomb* configuration = centre();
    if (!m_watch || !configuration)
        return;
    configuration->addWatch(m_groupId, m_funcId, this,
                            [this](qint64 group, qint64 item) { onWatchFpcDataUpdateEvent(group, item); });
}

void NFpccombMirror::onWatchFpcDataUpdateEvent(qint64 groupId, qint64 funcId)
{
    if (groupId == m_groupId && funcId == m_funcId)
        copyValues();
}

void NFpccombMirror::copyValues()
{
    NFpccomb* configuration = centre();
    const QList<NFpccombData> data =
        configuration ? configuration->getData(m_groupId, m_funcId) : QList<NFpccombData>();
    if (data.isEmpty())
        return;
    QVariantMap values;
    const QJsonObject members = data.first().jsonObject();
    for (auto member = members.begin(); member != members.end(); ++member) {
        const QVariant value = nfpccombvalues::storable(member.value());
        if (!value.isValid())
            continue;
        values.insert(member.key(), value);
        nrt::kcc::flushWrite(m_keyPrefix + member.key(), value);
        if (member.key().contains(QLatin1String("i18n_")))
            configuration->setI18nCacheToConfigCenter(nfpccombvalues::projectType(m_groupId), member.key(),
                                                      value.toString());
    }
    takeValues(values);
}

void NFpccombMirror::takeValues(const QVariantMap& values)
{
    Q_UNUSED(values)
}

void NFpccombMirror::onAppQuit()
{
    if (NFpccomb* configuration = centre())
        configuration->removeWatch(m_groupId, m_funcId, this);
}
