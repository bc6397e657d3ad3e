#include "proxy/NCloudDocsRecordManager.h"

#include "base/NClock.h"
#include "base/NDocsLog.h"
#include "base/NJsonNumber.h"
#include "base/NReadOnce.h"
#include "nrt/kcc.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QPointer>
#include <QStringList>

namespace {

const QString frontVerMember = QStringLiteral("front_ver");
const QString recordTimeMember = QStringLiteral("recordTime");
const QString pluginPathMember = QStringLiteral("pluginPath");

QString envConfigKey()
{
    return nrt::kcc::pluginPerfix() + QStringLiteral("skyleaf/env_config_record");
}

QString pluginPathKey()
{
    return nrt::kcc::pluginPerfix() + QStringLiteral("skyleaf/plugin_path_record");
}

QJsonObject load(const QString& key)
{
    return QJsonDocument::fromJson(nrt::kcc::flushRead(key).toString().toUtf8()).object();
}

void save(const QString& key, const QJsonObject& records)
{
    nrt::kcc::setValue(key, QString::fromUtf8(QJsonDocument(records).toJson(QJsonDocument::Compact)));
}

qint64 recordTime(const QJsonObject& record)
{
    return wholeNumber(record.value(recordTimeMember), 0);
}

} // namespace

namespace nrecordrules {

bool isExpired(const QJsonObject& record, qint64 now)
{
    constexpr qint64 secondsPerHour = 3600;
    const qint64 age = now - recordTime(record);
    return age < 0 || age / secondsPerHour > 1;
}

void purge(QJsonObject& records, qint64 now)
{
    QStringList expired;
    for (auto record = records.constBegin(); record != records.constEnd(); ++record) {
        if (isExpired(record.value().toObject(), now))
            expired << record.key();
    }
    for (const QString& name : qAsConst(expired))
        records.remove(name);
}

QJsonObject withPackage(QJsonObject versions, const QString& frontVer, const QString& path, qint64 now)
{
    constexpr int keptVersions = 3;
    if (versions.size() >= keptVersions && !versions.contains(frontVer)) {
        auto oldest = versions.constBegin();
        for (auto version = versions.constBegin(); version != versions.constEnd(); ++version) {
            if (recordTime(version.value().toObject()) < recordTime(oldest.value().toObject()))
                oldest = version;
        }
        versions.remove(oldest.key());
    }
    versions.insert(frontVer, QJsonObject{{pluginPathMember, path}, {recordTimeMember, now}});
    return versions;
}

} // namespace nrecordrules

NCloudDocsRecordManager* NCloudDocsRecordManager::instance()
{
    QCoreApplication* application = QCoreApplication::instance();
    if (!application)
        return nullptr;
    static NReadOnce<QPointer<NCloudDocsRecordManager>> shared([] {
        return QPointer<NCloudDocsRecordManager>(new NCloudDocsRecordManager(QCoreApplication::instance()));
    });
    return shared();
}

NCloudDocsRecordManager::NCloudDocsRecordManager(QObject* parent)
    : QObject(parent)
    , m_envConfigRecords(load(envConfigKey()))
    , m_pluginPathRecords(load(pluginPathKey()))
{
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this,
            &NCloudDocsRecordManager::onQuit);
}

EnvConfigRecord NCloudDocsRecordManager::retrieveEnvConfigRecord(const QString& fileId) const
{
    const QJsonObject stored = m_envConfigRecords.value(fileId).toObject();
    if (stored.isEmpty()) {
        ndocslog::info(QStringLiteral("no records"), "NCloudDocsRecordManager::retrieveEnvConfigRecord");
        return {};
    }
    return {fileId, stored.value(frontVerMember).toString(),
            nrecordrules::isExpired(stored, nclock::nowSeconds())};
}

void NCloudDocsRecordManager::updateEnvConfigRecord(const QString& fileId, const QString& frontVer)
{
    const qint64 now = nclock::nowSeconds();
    nrecordrules::purge(m_envConfigRecords, now);
    m_envConfigRecords.insert(fileId, QJsonObject{{frontVerMember, frontVer}, {recordTimeMember, now}});
    save(envConfigKey(), m_envConfigRecords);
    ndocslog::info(QStringLiteral("update front ver %1 of file %2").arg(frontVer, fileId),
                   "NCloudDocsRecordManager::updateEnvConfigRecord");
}

QString NCloudDocsRecordManager::retrievePluginPathRecord(const QString& officeType,
                                                          const QString& frontVer) const
{
    const QString path = m_pluginPathRecords.value(officeType)
                             .toObject()
                             .value(frontVer)
                             .toObject()
                             .value(pluginPathMember)
                             .toString();
    ndocslog::info(QStringLiteral("front ver is %1; plugin path is %2").arg(frontVer, path),
                   "NCloudDocsRecordManager::retrievePluginPathRecord");
    return path;
}

void NCloudDocsRecordManager::updatePluginPathRecord(const QString& officeType, const QString& frontVer,
                                                     const QString& pluginPath)
{
    m_pluginPathRecords.insert(officeType,
                               nrecordrules::withPackage(m_pluginPathRecords.value(officeType).toObject(),
                                                         frontVer, pluginPath, nclock::nowSeconds()));
    save(pluginPathKey(), m_pluginPathRecords);
    ndocslog::info(QStringLiteral("update front ver %1 and plugin path %2 record").arg(frontVer, pluginPath),
                   "NCloudDocsRecordManager::updatePluginPathRecord");
}

void NCloudDocsRecordManager::onQuit()
{
    save(envConfigKey(), m_envConfigRecords);
    save(pluginPathKey(), m_pluginPathRecords);
}
