#include "offline/NHelioCloudDocsLocalData.h"

#include "base/NReadOnce.h"
#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioCloudSvrProxy.h"
#include "nrt/NSettings.h"
#include "zeolite/JsonHelper.h"

#include <limits>

namespace {

int readTimeoutMs()
{
    constexpr unsigned defaultMs = 300;
    nrt::NCCPluginsSettings settings;
    settings.beginGroup(QStringLiteral("skyleaf"));
    bool isNumber = false;
    const unsigned ms = settings.value(QStringLiteral("selectlocaldatatimeout")).toUInt(&isNumber);
    constexpr auto longest = unsigned(std::numeric_limits<int>::max());
    return int(isNumber ? qMin(ms, longest) : defaultMs);
}

int timeoutMs()
{
    static NReadOnce<int> ms(&readTimeoutMs);
    return ms();
}

QJsonValue member(const QJsonObject& object, const QString& key)
{
    return object.contains(key) && !key.isEmpty() ? object.value(key) : QJsonValue();
}

} // namespace

NHelioCloudDocsLocalData::NHelioCloudDocsLocalData(QObject* parent)
    : QObject(parent)
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(timeoutMs());
    connect(&m_timer, &QTimer::timeout, this, &NHelioCloudDocsLocalData::onTimeout);
}

bool NHelioCloudDocsLocalData::query(const QString& fileId)
{
    const NHelioApplication* application = NHelioApplication::instance();
    NHelioCloudSvrProxy* cloud = application ? application->cloudSvrProxy() : nullptr;
    if (fileId.isEmpty() || !cloud)
        return false;
    m_pendingRequestId = cloud->getDOPFileInfo({}, fileId, this, "onSelectFinish");
    m_timer.start();
    return true;
}

QJsonValue NHelioCloudDocsLocalData::dataValue(const QString& key) const
{
    return member(m_data, key);
}

QJsonValue NHelioCloudDocsLocalData::extendsValue(const QString& key) const
{
    return member(m_extends, key);
}

void NHelioCloudDocsLocalData::onSelectFinish(bool success, const QString& requestId,
                                              const TavaIpcResult& result)
{
    if (requestId.isEmpty() || requestId != m_pendingRequestId)
        return;
    m_pendingRequestId.clear();
    m_timer.stop();
    if (success && result.code == 0)
        parse(result);
    Q_EMIT queryFinish();
}

void NHelioCloudDocsLocalData::onTimeout()
{
    m_pendingRequestId.clear();
    Q_EMIT queryFinish();
}

void NHelioCloudDocsLocalData::parse(const TavaIpcResult& result)
{
    const QString text = result.values.value(QStringLiteral("data"));
    if (text.isEmpty())
        return;
    m_rawData = text.toUtf8();
    m_data = JsonHelper::convertByteArrayToQJson(m_rawData);
    const auto extends = m_data.constFind(QStringLiteral("extends"));
    if (extends != m_data.constEnd()) {
        const QByteArray encoded = extends.value().toString().toUtf8();
        m_extends = JsonHelper::convertByteArrayToQJson(QByteArray::fromBase64(encoded));
    }
}
