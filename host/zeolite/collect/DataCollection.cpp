#include "zeolite/collect/DataCollection.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QtEndian>

#include "zeolite/NxLoggerLite.h"

namespace {

/** The same in every process, unlike qHash. */
quint32 stableHash(const QString& text)
{
    const QByteArray digest = QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha1);
    return qFromBigEndian<quint32>(digest.constData());
}

NDcOrderedFields ordered(const NDcFields& fields)
{
    NDcOrderedFields result;
    for (auto field = fields.begin(); field != fields.end(); ++field)
        result.insert(field.key(), field.value());
    return result;
}

QByteArray fileLine(const DcEvent& event)
{
    QJsonObject object = event.toJson();
    object.insert(QStringLiteral("arguments"), QJsonArray{event.first, event.second});
    object.insert(QStringLiteral("probability"), event.probability);
    object.insert(QStringLiteral("flag"), event.flag);
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace

QJsonObject DcEvent::toJson() const
{
    QJsonObject values;
    for (auto field = fields.begin(); field != fields.end(); ++field)
        values.insert(field.key(), field.value());
    return {{QStringLiteral("name"), name}, {QStringLiteral("fields"), values}, {QStringLiteral("t"), t}};
}

DataCollection::DataCollection(const QString& filePath, QString machineId, ClockMs nowMs)
    : m_machineId(std::move(machineId))
    , m_nowMs(std::move(nowMs))
    , m_delivery([this](DcEvent& event) { record(event); })
{
    if (!filePath.isEmpty())
        m_file.emplace(filePath);
}

bool DataCollection::canSendByCurUser(int probability, bool flag) const
{
    if (probability <= 1)
        return probability == 1;
    const std::lock_guard<std::mutex> lock(m_mutex);
    const QString& who = flag && !m_userId.isEmpty() ? m_userId : m_machineId;
    return stableHash(who) % static_cast<quint32>(probability) == 0;
}

void DataCollection::postGeneralEvent(const QString& name, const NDcFields& fields, int first, int second,
                                      int probability, bool flag)
{
    m_delivery.post({name, ordered(fields), 0, first, second, probability, flag});
}

void DataCollection::postGeneralEvent(const QString& name, const NDcOrderedFields& fields, int first,
                                      int second, int probability)
{
    m_delivery.post({name, fields, 0, first, second, probability, false});
}

void DataCollection::setUserId(const QString& userId)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_userId = userId;
}

int DataCollection::addObserver(Observer observer)
{
    return m_delivery.addObserver(std::move(observer));
}

void DataCollection::removeObserver(int id)
{
    m_delivery.removeObserver(id);
}

std::vector<DcEvent> DataCollection::events() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return {m_events.begin(), m_events.end()};
}

void DataCollection::record(DcEvent& event)
{
    event.t = m_nowMs();
    if (m_file && !m_file->append(fileLine(event)) && !m_fileFailed) {
        m_fileFailed = true;
        NxLoggerLite::writeWarning(QStringLiteral("zeolite"),
                                   QStringLiteral("event file not written: %1--%2")
                                       .arg(m_file->errorString(), QLatin1String("DataCollection::record")));
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_events.push_back(event);
    if (m_events.size() > keptEvents)
        m_events.pop_front();
}
