#pragma once

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

/** Remembers which front version a file was opened with and where the packages of front versions lie. */
class NCloudDocsRecordManager : public QObject
{
    Q_OBJECT
public:
    /** The one instance; null without an application object. */
    static NCloudDocsRecordManager* instance();

    EnvConfigRecord retrieveEnvConfigRecord(const QString& fileId) const;
    void updateEnvConfigRecord(const QString& fileId, const QString& frontVer);
    /** Empty when unknown. */
    QString retrievePluginPathRecord(const QString& officeType, const QString& frontVer) const;
    void updatePluginPathRecord(const QString& officeType, const QString& frontVer,
                                const QString& pluginPath);

private:
    using QObject::QObject;
};

/** Which office type the version check of a file answered. */
namespace nversioncheckcache {

/** Empty when unknown. */
QString get(const QString& key);
void set(const QString& key, const QString& officeType);

} // namespace nversioncheckcache
