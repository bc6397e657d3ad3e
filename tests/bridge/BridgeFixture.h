#pragma once

#include "bridge/NHelioCloudDocsAsynJsObj.h"

#include "nheliostat/NHelioApplication.h"
#include "nheliostat/framework/ApplicationInstance.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellMainWindow.h"
#include "support/FakeBrowserWidget.h"
#include "support/ServicesFixture.h"
#include "support/SilentCloudSvrProxy.h"

#include <QJsonDocument>

#include <memory>

/** A cloud service that writes down what it is asked. */
class RecordingCloud final : public SilentCloudSvrProxy
{
public:
    QString folderUpload(const QString& groupId, const QString& parentId, const QString& folder, QObject*,
                         const char* slot, const QString&) override
    {
        return write({QStringLiteral("folderUpload"), groupId, parentId, folder, QLatin1String(slot)});
    }
    QString batchUploadFileListToAnyExistedPath(const QString& groupId, const QString& parentId,
                                                const QStringList& paths, const QString& fileId, bool,
                                                QObject*, const char*, const QString&) override
    {
        return write({QStringLiteral("upload"), groupId, parentId, paths.join(u','), fileId});
    }
    QString invokeCloudFunction(const QString& function, QGenericArgument argument, QObject*,
                                const char* slot) override
    {
        const auto* texts = static_cast<const QStringList*>(argument.data());
        return write({function, QLatin1String(argument.name()), texts->join(u','), QLatin1String(slot)});
    }
    QString callCloudMethod(const QString& method, const QStringList&, QObject*, const char* slot) override
    {
        return write({method, QLatin1String(slot)});
    }
    void prepareToggleModeLoadingMask(QWidget*, std::function<void()> completed) override
    {
        write({QStringLiteral("mask")});
        completeMask = std::move(completed);
    }
    void showLoginPrompt(QWidget*, const QString&, const QString&) override
    {
        write({QStringLiteral("login")});
    }
    void openVirtualCloudDisk(const QString& userId, const QString&, const QString&, const QString& from,
                              bool) override
    {
        write({QStringLiteral("disk"), userId, from});
    }

    QStringList calls; //!< the arguments of each call joined by a blank
    std::function<void()> completeMask;

private:
    QString write(const QStringList& what)
    {
        calls << what.join(u' ');
        return QStringLiteral("request%1").arg(calls.size());
    }
};

/** A shell with one real window, and records in the place of its other parts. */
class RecordingApplication final : public NHelioApplication,
                                   public NHelioCloudFilesMgr,
                                   public NHelioCloudCollectInfoMgr
{
public:
    RecordingApplication() { nheliostat::host::setApplication(this); }
    ~RecordingApplication() override { nheliostat::host::setApplication(nullptr); }

    QVector<NHelioMainWindow*> mainWindows() const override { return {window.get()}; }
    NHelioMainWindow* findRelativeHelioMainWindow(const QObject* object) const override
    {
        for (; object && object != window.get(); object = object->parent()) {
        }
        return object ? window.get() : nullptr;
    }
    NHelioCloudSvrProxy* cloudSvrProxy() const override { return &cloud; }
    NHelioCloudFilesMgr* cloudFilesMgr() const override { return const_cast<RecordingApplication*>(this); }
    NHelioCloudCollectInfoMgr* getCloudCollectInfoMgr() const override
    {
        return const_cast<RecordingApplication*>(this);
    }
    NHelioSkin* helioSkin() const override { return nullptr; }
    NHelioAccount* account() const override { return nullptr; }
    QObject* scriptIpcEventHub() const override { return nullptr; }
    bool isShelllessMode() const override { return false; }
    QWidget* widget() const override { return window.get(); }
    void installPluginTranslation(const QString&, const QStringList&) override {}
    void uninstallPluginTranslation(const QString&, const QStringList&) override {}

    void downloadAndOpen(const QVariantMap& parameters, NHelioMainWindow* target) override
    {
        opened << parameters;
        openedIn << target;
    }
    qint64 openStartTime() const override { return 0; }
    void reportDownloadProhibited() override {}
    void reportTabMenuClick(const QString&, NHelioSubPage*) override {}
    void sendCloudFileOpen(const QString& userId, const QString& source, const QString& action,
                           int virtualType) override
    {
        reports << QStringList{userId, source, action, QString::number(virtualType)}.join(u' ');
    }

    mutable RecordingCloud cloud;
    std::unique_ptr<ShellMainWindow> window;
    QVector<QVariantMap> opened;
    QVector<NHelioMainWindow*> openedIn;
    QStringList reports;
};

/** A bridge whose web view stands in the window of a recording shell. */
class BridgeFixture : public ServicesFixture
{
protected:
    void SetUp() override
    {
        ServicesFixture::SetUp();
        services.domains.insert(QStringLiteral("quill_api_spec"), QStringLiteral("https://docs.test"));
        services.domains.insert(QStringLiteral("quill"), QStringLiteral("http://docs.test"));
    }

    void start()
    {
        ServicesFixture::start();
        application = std::make_unique<RecordingApplication>();
        application->window = std::make_unique<ShellMainWindow>();
        container = new FakeWebViewContainer(application->window.get());
        bridge = new NHelioCloudDocsAsynJsObj(container, container, nullptr);
    }

    void TearDown() override
    {
        application->window.reset();
        application.reset();
        ServicesFixture::TearDown();
    }

    /** The reply to a call with the arguments of a JSON object; empty when none was delivered. */
    QJsonObject call(const char* name, const QByteArray& arguments = "{}")
    {
        container->transport.resolved.clear();
        bridge->fromJSAsynCall(QStringLiteral("{\"id\":\"c%1\",\"name\":\"%2\",\"args\":%3}")
                                   .arg(++m_calls)
                                   .arg(QLatin1String(name), QString::fromUtf8(arguments)));
        EXPECT_TRUE(container->transport.rejected.empty()) << name;
        if (container->transport.resolved.empty())
            return {};
        return QJsonDocument::fromJson(container->transport.resolved.front().json).object();
    }

    static QJsonObject json(const QByteArray& text)
    {
        const QJsonDocument document = QJsonDocument::fromJson(text);
        EXPECT_TRUE(document.isObject()) << text.constData();
        return document.object();
    }

    /** What the page's named functions were called with, as "name text". */
    QStringList functionCalls() const
    {
        QStringList calls;
        for (const auto& call : container->transport.functionCalls)
            calls << call.name + u' ' + call.text;
        return calls;
    }

    std::unique_ptr<RecordingApplication> application;
    FakeWebViewContainer* container = nullptr;
    NHelioCloudDocsAsynJsObj* bridge = nullptr;

private:
    int m_calls = 0;
};
