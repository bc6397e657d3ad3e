#include "nrt/NSettings.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QSettings>

#include "nrt/FileLock.h"
#include "nrt/RuntimeSetup.h"
#include "nrt/SettingsLocation.h"

namespace nrt {
namespace {

Q_LOGGING_CATEGORY(lcSettings, "nrt.settings")

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

void writeNow(QSettings& settings)
{
    removeAbandonedLockFile(settings.fileName() + QStringLiteral(".lock"));
    settings.sync();
    if (settings.status() == QSettings::AccessError)
        qCWarning(lcSettings, "settings file %s cannot be written", qUtf8Printable(settings.fileName()));
}

} // namespace

NSettings::NSettings(const QString& organization, const QString& application)
    : m_settings(std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope, organization,
                                             application))
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
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                       QDir(dataDir).filePath(QStringLiteral("settings")));
}

} // namespace nrt
