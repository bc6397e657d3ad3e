#pragma once

#include <QObject>
#include <QString>
#include <QVariant>

#include <memory>

/** A plug-in of the suite: a directory with files and properties. User-interface thread. */
class NPlugin : public QObject
{
    Q_OBJECT
public:
    enum State { NotLoaded = 0, Loading = 1, LoadFailed = 2, Loaded = 3 };
    Q_ENUM(State)

    using QObject::QObject;

    virtual QString name() const = 0;
    /**
     * Loads the plug-in and answers the state reached: 3 when its directory is there and complete. A plug-in
     * that has to be fetched first answers 1 and reports later. The arguments select a priority and options;
     * 0, 0 is the default.
     */
    virtual int load(int priority = 0, int options = 0) = 0;
    virtual State state() const = 0;
    /** The directory; empty while not loaded. */
    virtual QString localPath() const = 0;
    /** "version" and other named properties; invalid when unknown. */
    virtual QVariant getProp(const QString& name) const = 0;

    /** The state as text: "not loaded", "loading", "load failed", "loaded". */
    static QString convertState(State state);

Q_SIGNALS:
    void loadSuccess();
    void loadFailed();
};

using NPluginPtr = std::shared_ptr<NPlugin>;

/** Plug-ins that were upgraded since the installation. */
class NPluginUpgradeManager
{
public:
    virtual ~NPluginUpgradeManager() = default;
    /** The upgraded plug-in, or null when it was never upgraded. */
    virtual NPluginPtr getPlugin(const QString& name) = 0;
};

namespace kpluginconfig {

/** The directory that the installation's configuration gives for a plug-in; empty when it gives none. */
QString getPluginPath(const QString& name, const QString& version);

} // namespace kpluginconfig

/** The plug-ins of the installation. User-interface thread. */
class NPluginManager
{
public:
    virtual ~NPluginManager() = default;
    /** Null when no plug-in of that name is known. */
    virtual NPluginPtr getPlugin(const QString& name) = 0;
    /** The installed directory of the plug-in; empty when unknown or missing. */
    virtual QString getPluginPath(const QString& name, bool checkExists = true) = 0;
    /** May be null. */
    virtual NPluginUpgradeManager* getPluginUpgradeManager() = 0;
};
