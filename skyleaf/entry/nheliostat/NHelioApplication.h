#pragma once

#include <QObject>
#include <QPalette>
#include <QVariantMap>
#include <QVector>

class NHelioAccount;
class NHelioCloudCollectInfoMgr;
class NHelioCloudFilesMgr;
class NHelioCloudSvrProxy;
class NHelioMainWindow;
class NHelioSkin;
class NHelioSubPage;
class QWidget;

/** The running shell. Every accessor may answer null: callers go on without. User-interface thread. */
class NHelioApplication : public QObject
{
    Q_OBJECT
public:
    /** Null before the shell has started and after it has ended. */
    static NHelioApplication* instance();

    using QObject::QObject;

    virtual QVector<NHelioMainWindow*> mainWindows() const = 0;
    /** The main window that holds the object: as a widget, or through its chain of parents. */
    virtual NHelioMainWindow* findRelativeHelioMainWindow(const QObject* object) const = 0;
    virtual NHelioCloudSvrProxy* cloudSvrProxy() const = 0;
    virtual NHelioCloudFilesMgr* cloudFilesMgr() const = 0;
    virtual NHelioCloudCollectInfoMgr* getCloudCollectInfoMgr() const = 0;
    virtual NHelioSkin* helioSkin() const = 0;
    virtual NHelioAccount* account() const = 0;
    /** Where script inter-process events (type NHelioScriptIpcEvent::eventType) are sent. */
    virtual QObject* scriptIpcEventHub() const = 0;
    /** True when pages are shown without the shell's windows around them. */
    virtual bool isShelllessMode() const = 0;
    /** The window in front; null without windows. */
    virtual QWidget* widget() const = 0;

    /** Installs and removes a module's translations; the list names the translation files. */
    virtual void installPluginTranslation(const QString& module, const QStringList& names) = 0;
    virtual void uninstallPluginTranslation(const QString& module, const QStringList& names) = 0;

Q_SIGNALS:
    void aboutToQuit();
};

/** The account object of deployments that report capability 0x40000. */
class NHelioAccount : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;
    virtual bool isLoggedIn() const = 0;
    virtual QString sessionId() const = 0;

Q_SIGNALS:
    void signalLoginStatusChanged();
};

/** The shell's colours. */
class NHelioSkin
{
public:
    virtual ~NHelioSkin() = default;
    virtual bool isDark() const = 0;
    /** The palette of a kind of window, such as "FileDialog". */
    virtual QPalette palette(const QString& name) const = 0;
};

namespace NHelioCollectInfoHelper {

/** The part of the drive that a document was opened from. */
enum VIRTUAL_TYPE { Unknown = -1, All = 0, Team = 1, Device = 2, Received = 3 };

} // namespace NHelioCollectInfoHelper

/** Collects how documents are opened. */
class NHelioCloudCollectInfoMgr
{
public:
    virtual ~NHelioCloudCollectInfoMgr() = default;
    /** When the open that is under way began, on the monotonic clock in nanoseconds; 0 or less when unknown.
     */
    virtual qint64 openStartTime() const = 0;
    virtual void reportDownloadProhibited() = 0;
    /** The user chose `item` in the menu of the sub page's tab. */
    virtual void reportTabMenuClick(const QString& item, NHelioSubPage* subPage) = 0;
    virtual void sendCloudFileOpen(const QString& userId, const QString& source, const QString& action,
                                   int virtualType) = 0;
};

/** Opens files of the cloud as local documents. */
class NHelioCloudFilesMgr
{
public:
    virtual ~NHelioCloudFilesMgr() = default;
    /**
     * Downloads a file and opens it, in `window` or, with null, in a window of the shell's choice. Keys:
     * "fileid", "fileName", "doctype", "csource", "from", "supportNoLand", "pageIdxInfo", "isSwitch",
     * "isSaveAs". Does not wait.
     */
    virtual void downloadAndOpen(const QVariantMap& parameters, NHelioMainWindow* window) = 0;
};

/** Calls a function of the browser module. False when it is not there or failed. */
bool helioBrowserModuleCallProxy(const QString& name, const QVariant& argument, QVariant* result);
