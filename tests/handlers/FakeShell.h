#pragma once

#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/framework/ApplicationInstance.h"
#include "support/SilentCloudSvrProxy.h"

#include <QPointer>

/** A cloud service that writes down what it is asked. */
class FakeCloud final : public SilentCloudSvrProxy
{
public:
    QString createDOPRootData(const QString& fileId, QObject*, const char* slot) override
    {
        return write({fileId, QLatin1String(slot)});
    }
    QString getDOPFileInfo(const QString& localId, const QString& fileId, QObject*, const char* slot) override
    {
        return write({localId, fileId, QLatin1String(slot)});
    }
    QString removeDOPRootData(const QString& localId, QObject*, const char* slot) override
    {
        return write({localId, QLatin1String(slot)});
    }
    QString updateDOPFileInfo(const QString& localId, const QString& data, const QString& source,
                              QObject* receiver, const char* slot) override
    {
        return write({localId, data, source, receiver ? QStringLiteral("receiver") : QLatin1String(slot)});
    }
    QString unzipDOPFile(const QString& localId, const QString& isCompress, const QString& isRemoveZip,
                         const QString& source, const QString& destination, QObject*,
                         const char* slot) override
    {
        return write({localId, isCompress, isRemoveZip, source, destination, QLatin1String(slot)});
    }
    void notifyOpenPrintFiles(NHelioMainWindow*, const QString& path, const QString& fileId,
                              std::function<void(const QJsonObject&)> completed) override
    {
        write({path, fileId});
        deliverPrinted = std::move(completed);
    }

    QStringList calls; //!< the arguments of each call joined by "|"; the number of a call is its request id
    std::function<void(const QJsonObject&)> deliverPrinted;

private:
    QString write(const QStringList& arguments)
    {
        calls << arguments.join(u'|');
        return QString::number(calls.size());
    }
};

/** Dock panels that write down the messages for them. */
class FakeDockPanels final : public NHelioDockPanelUtility
{
public:
    QString getDefaultDockContainerId() const override { return QStringLiteral("container"); }
    bool notifyDockMessage(const QString& container, const QString& event, const QString& message,
                           const QString& source, QObject* receiver) override
    {
        messages << QStringList{container, event, message, source}.join(u'|');
        hadReceiver = receiver != nullptr;
        return taken;
    }
    bool isDockPanelEntryVisible(const QString& panelId) const override { return panelId == visible; }

    QStringList messages;
    QString visible;
    bool taken = true;
    bool hadReceiver = false;
};

/** A main window that has nothing but dock panels, when it is given any. */
class FakeMainWindow final : public NHelioMainWindow
{
public:
    NHelioCentralArea* centralArea() const override { return nullptr; }
    NHelioTabBar* tabBar() const override { return nullptr; }
    NHelioHeaderBar* headerBar() const override { return nullptr; }
    NHelioWorkAreaManager* workAreaManager() const override { return nullptr; }
    NHelioDockPanelUtility* getDockPanelUtility() const override { return panels; }
    bool isFocusLockedInCurrentPage() const override { return false; }
    void showToFront(bool, bool, bool) override {}

    NHelioDockPanelUtility* panels = nullptr; //!< not owned
};

/** A shell with a cloud service; the window is the one that a test sets. */
class FakeShell final : public NHelioApplication
{
public:
    FakeShell() { nheliostat::host::setApplication(this); }
    ~FakeShell() override { nheliostat::host::setApplication(nullptr); }

    QVector<NHelioMainWindow*> mainWindows() const override { return {}; }
    NHelioMainWindow* findRelativeHelioMainWindow(const QObject*) const override { return window; }
    NHelioCloudSvrProxy* cloudSvrProxy() const override { return hasCloud ? &cloud : nullptr; }
    NHelioCloudFilesMgr* cloudFilesMgr() const override { return nullptr; }
    NHelioCloudCollectInfoMgr* getCloudCollectInfoMgr() const override { return nullptr; }
    NHelioSkin* helioSkin() const override { return nullptr; }
    NHelioAccount* account() const override { return nullptr; }
    QObject* scriptIpcEventHub() const override { return nullptr; }
    bool isShelllessMode() const override { return true; }
    QWidget* widget() const override { return nullptr; }
    void installPluginTranslation(const QString&, const QStringList&) override {}
    void uninstallPluginTranslation(const QString&, const QStringList&) override {}

    mutable FakeCloud cloud;
    bool hasCloud = true;
    QPointer<FakeMainWindow> window;
};
