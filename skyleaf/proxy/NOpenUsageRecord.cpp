#include "proxy/NOpenUsageRecord.h"

#include "base/NClock.h"
#include "base/NReadOnce.h"
#include "nrt/kcc.h"
#include "proxy/NConfigCentreValues.h"
#include "proxy/NDOPConfig.h"

#include <memory>

namespace {

QString dayName(const QDate& day)
{
    return QString::number(day.toJulianDay());
}

QVariantMap lastDays(const QVariantMap& content, const QDate& today, int days)
{
    QVariantMap kept;
    for (int age = 0; age < days; ++age) {
        const QString name = dayName(today.addDays(-age));
        if (content.contains(name))
            kept.insert(name, content.value(name));
    }
    return kept;
}

} // namespace

NOpenUsageRecord& NOpenUsageRecord::openOnlineFile()
{
    static NReadOnce<std::shared_ptr<NOpenUsageRecord>> record(
        [] { return std::make_shared<NOpenUsageRecord>(QStringLiteral("openOnlineFile")); });
    return *record();
}

NOpenUsageRecord::NOpenUsageRecord(const QString& name)
    : m_contentKey(nrt::kcc::pluginPerfix() + QStringLiteral("cloudDocsRecord/") + name +
                   QStringLiteral("_content"))
    , m_dateKey(nrt::kcc::pluginPerfix() + QStringLiteral("cloudDocsRecord/") + name +
                QStringLiteral("_date"))
    , m_keepDays(nconfigvalues::openFrequency().recordExpiredDays)
    , m_valid(!name.isEmpty())
{
    m_content = nrt::kcc::value(m_contentKey).toMap();
}

void NOpenUsageRecord::record(const QString& url, const QString& key, const PreCreateNotice& notice)
{
    const QString counted =
        key.isEmpty() ? NDocsOfflinePage::NDOPConfig::instance().officeTypeOfUrl(url) : key;
    if (counted.isEmpty())
        return;
    if (notice)
        notice(QStringLiteral("cloudDocsPreCreateBrowser"));
    checkDay();
    count(counted);
}

void NOpenUsageRecord::checkDay()
{
    const QDate today = nclock::today();
    if (!m_date.isValid()) {
        bool isDay = false;
        const qint64 day = nrt::kcc::value(m_dateKey).toLongLong(&isDay);
        if (isDay)
            m_date = QDate::fromJulianDay(day);
    }
    if (!m_date.isValid()) {
        m_date = today;
        nrt::kcc::setValue(m_dateKey, today.toJulianDay());
        return;
    }
    if (m_date == today)
        return;
    m_date = today;
    nrt::kcc::setValue(m_dateKey, today.toJulianDay());
    m_content = lastDays(m_content, today, m_keepDays);
    nrt::kcc::setValue(m_contentKey, m_content);
}

void NOpenUsageRecord::count(const QString& key)
{
    const QString total = QStringLiteral("total");
    QVariantMap day = m_content.value(dayName(m_date)).toMap();
    day.insert(total, day.value(total).toLongLong() + 1);
    day.insert(key, day.value(key).toLongLong() + 1);
    m_content.insert(dayName(m_date), day);
    nrt::kcc::setValue(m_contentKey, m_content);
}
