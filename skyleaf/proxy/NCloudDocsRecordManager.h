#pragma once

#include <QJsonObject>
#include <QObject>
#include <QString>

/** What is remembered of a file's last environment configuration. */
struct EnvConfigRecord
{
    QString fileId;
    QString frontVer;
    bool expired = false;

    bool isUsable() const { return !frontVer.isEmpty() && !expired; }
};

/**
 * Remembers which front version a file was opened with and where the packages of front versions lie. Both
 * outlive the process. User-interface thread.
 */
class NCloudDocsRecordManager : public QObject
{
    Q_OBJECT
public:
    /** The one instance, a child of the application object; null without one. */
    static NCloudDocsRecordManager* instance();

    EnvConfigRecord retrieveEnvConfigRecord(const QString& fileId) const;
    void updateEnvConfigRecord(const QString& fileId, const QString& frontVer);
    /** Empty when unknown. */
    QString retrievePluginPathRecord(const QString& officeType, const QString& frontVer) const;
    /** Three versions are kept of an office type; a fourth takes the place of the oldest. */
    void updatePluginPathRecord(const QString& officeType, const QString& frontVer,
                                const QString& pluginPath);

public Q_SLOTS:
    void onQuit();

private:
    explicit NCloudDocsRecordManager(QObject* parent);

    QJsonObject m_envConfigRecords;
    QJsonObject m_pluginPathRecords;
};

/** The rules of the records, over their JSON objects. Times are seconds since the epoch. */
namespace nrecordrules {

/** Two hours and more ago, or in the future. */
bool isExpired(const QJsonObject& record, qint64 now);
/** Erases the expired records. */
void purge(QJsonObject& records, qint64 now);
/** Puts a version's package into the records of an office type. */
QJsonObject withPackage(QJsonObject versions, const QString& frontVer, const QString& path, qint64 now);

} // namespace nrecordrules
