#include "nrt/NSettings.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QSettings>
#include <QStandardPaths>

#include <mutex>

#include "nrt/FileLock.h"
#include "nrt/RuntimeSetup.h"
#include "nrt/SettingsLocation.h"
#include "nrt/files.h"

namespace nrt {
namespace {

Q_LOGGING_CATEGORY(lcSettings, "nrt.settings")

constexpr qint64 largestSettings = 16LL << 20; //!< bytes

QString maker()
{
    return QStringLiteral("Maravel");
}

/** Keeps a copy of a file that cannot be read whole: the next write replaces it by what could be read. */
void keepDamagedFile(const QString& path)
{
    const QString copy = path + QStringLiteral(".corrupt");
    QFile::remove(copy);
    qCWarning(lcSettings, "settings file %s is damaged; %s", qUtf8Printable(path),
              QFile::copy(path, copy) ? "a copy was kept" : "no copy could be kept");
}

/** Where the settings lie; empty until they are redirected. */
struct Place
{
    std::mutex mutex;
    QString directory; //!< guarded by the mutex
};

Place& place()
{
    static Place place;
    return place;
}

QString fileOf(const QString& organization, const QString& application)
{
    const std::lock_guard<std::mutex> lock(place().mutex);
    const QString& redirected = place().directory;
    const QString directory = redirected.isEmpty()
                                  ? QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
                                  : redirected;
    return QStringLiteral("%1/%2/%3.conf").arg(directory, organization, application);
}

/**
 * QSettings opens whatever is there, and waits for the other end of a pipe: what is no settings file is set
 * aside first. The path to be used.
 */
QString usablePath(const QString& path)
{
    const files::Reading found = files::inspect(path, largestSettings);
    if (found || found.fault == files::Fault::Missing || found.fault == files::Fault::Unreadable)
        return path;
    const QString aside = files::setAside(path);
    qCWarning(lcSettings, "settings file %s cannot be used, %s; %s %s", qUtf8Printable(path),
              qUtf8Printable(found.reason), aside.isEmpty() ? "it could not be set aside" : "set aside as",
              qUtf8Printable(aside));
    return aside.isEmpty() ? path + QStringLiteral(".unusable") : path;
}

void writeNow(QSettings& settings)
{
    usablePath(settings.fileName());
    removeAbandonedLockFile(settings.fileName() + QStringLiteral(".lock"));
    settings.sync();
    if (settings.status() == QSettings::AccessError)
        qCWarning(lcSettings, "settings file %s cannot be written", qUtf8Printable(settings.fileName()));
}

} // namespace

NSettings::NSettings(const QString& organization, const QString& application)
    : m_settings(
          std::make_unique<QSettings>(usablePath(fileOf(organization, application)), QSettings::NativeFormat))
{
    m_settings->setFallbacksEnabled(false);
    if (m_settings->status() == QSettings::FormatError)
        keepDamagedFile(m_settings->fileName());
}

NSettings::~NSettings() = default;

void NSettings::beginGroup(const QString& group)
{
    m_settings->beginGroup(group);
}

void NSettings::endGroup()
{
    m_settings->endGroup();
}

QVariant NSettings::value(const QString& key, const QVariant& defaultValue) const
{
    QVariant stored = m_settings->value(key);
    if (stored.isValid())
        return stored;
    const QString group = m_settings->group();
    const QString path = group.isEmpty() ? key : group + QLatin1Char('/') + key;
    return runtime::setup()->settings.value(path, defaultValue);
}

void NSettings::setValue(const QString& key, const QVariant& value)
{
    m_settings->setValue(key, value);
    writeNow(*m_settings);
}

void NSettings::remove(const QString& key)
{
    m_settings->remove(key);
    writeNow(*m_settings);
}
NCCCommonSettings::NCCCommonSettings()
    : NSettings(maker(), QStringLiteral("Common"))
{
}

NCCPluginsSettings::NCCPluginsSettings()
    : NCCOfficeSettings(maker(), QStringLiteral("Plugins"))
{
}

NVLTCloudSettings::NVLTCloudSettings()
    : NSettings(maker(), QStringLiteral("VLTCloud"))
{
}

void runtime::redirectSettings(const QString& dataDir)
{
    const QString directory = QDir(dataDir).filePath(QStringLiteral("settings"));
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, directory); // for whoever else uses it
    const std::lock_guard<std::mutex> lock(place().mutex);
    place().directory = directory;
}

} // namespace nrt
