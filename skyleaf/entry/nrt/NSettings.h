#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>

class QSettings;

namespace nrt {

/**
 * A user-scope settings store in native format, addressed by organisation and application, with nested
 * groups.
 *
 * Reads answer the stored value, else the value that the deployment gives for "group/key", else the default.
 * Every write is on disk when the call returns. Single-threaded per object; several objects and processes may
 * use one store.
 */
class NSettings
{
public:
    NSettings(const QString& organization, const QString& application);
    virtual ~NSettings();
    NSettings(const NSettings&) = delete;
    NSettings& operator=(const NSettings&) = delete;

    void beginGroup(const QString& group);
    void endGroup();

    QVariant value(const QString& key, const QVariant& defaultValue = {}) const;
    void setValue(const QString& key, const QVariant& value);
    void remove(const QString& key);

private:
    std::unique_ptr<QSettings> m_settings;
};

/** The common settings of the suite. */
class NCCCommonSettings : public NSettings
{
public:
    NCCCommonSettings();
};

namespace kcc {

/** A settings store of the configuration. */
class NCCBaseSettings : public NSettings
{
public:
    using NSettings::NSettings;
};

} // namespace kcc

/** The configuration of the suite. */
class NCCOfficeSettings : public kcc::NCCBaseSettings
{
public:
    using NCCBaseSettings::NCCBaseSettings;
};

/** The configuration of plug-ins. */
class NCCPluginsSettings : public NCCOfficeSettings
{
public:
    NCCPluginsSettings();
};

/** The settings store of the cloud modules: organisation "Maravel", application "VLTCloud". */
class NVLTCloudSettings : public NSettings
{
public:
    NVLTCloudSettings();
};

} // namespace nrt
