#pragma once

#include "nheliostat/NHelioApplication.h"
#include "nheliostat/framework/ApplicationInstance.h"
#include "support/SilentCloudSvrProxy.h"

#include "tava/TavaIpc_types.h"

#include <vector>

/** A cloud service that keeps what it was asked and answers only when told to. */
class FakeCloudSvrProxy final : public SilentCloudSvrProxy
{
public:
    QString getDOPFileInfo(const QString& localId, const QString& fileId, QObject* receiver,
                           const char* slot) override
    {
        askedFiles << localId + u'|' + fileId;
        m_receiver = receiver;
        m_slot = slot;
        return QString::number(askedFiles.size());
    }
    QString invokeCloudFunction(const QString& function, QGenericArgument argument, QObject* receiver,
                                const char* slot) override
    {
        functions << function + u'|' + QLatin1String(argument.name()) + u'|' + QLatin1String(slot);
        hadReceiver = receiver != nullptr;
        calls.push_back(*static_cast<const vlt::tava::TavaIpcArg*>(argument.data()));
        return QStringLiteral("call");
    }

    /** Answers the query of that number, counted from 1. */
    void deliverFileInfo(int query, bool success, const TavaIpcResult& result)
    {
        QMetaObject::invokeMethod(m_receiver, m_slot.constData(), Q_ARG(bool, success),
                                  Q_ARG(QString, QString::number(query)), Q_ARG(TavaIpcResult, result));
    }

    QStringList askedFiles; //!< "local id|file id"
    QStringList functions;  //!< "function|argument|slot"
    bool hadReceiver = false;
    std::vector<vlt::tava::TavaIpcArg> calls;

private:
    QObject* m_receiver = nullptr;
    QByteArray m_slot;
};

/** A shell that has nothing but a cloud service. */
class FakeApplication final : public NHelioApplication
{
public:
    FakeApplication() { nheliostat::host::setApplication(this); }
    ~FakeApplication() override { nheliostat::host::setApplication(nullptr); }

    QVector<NHelioMainWindow*> mainWindows() const override { return {}; }
    NHelioMainWindow* findRelativeHelioMainWindow(const QObject*) const override { return nullptr; }
    NHelioCloudSvrProxy* cloudSvrProxy() const override { return &cloud; }
    NHelioCloudFilesMgr* cloudFilesMgr() const override { return nullptr; }
    NHelioCloudCollectInfoMgr* getCloudCollectInfoMgr() const override { return nullptr; }
    NHelioSkin* helioSkin() const override { return nullptr; }
    NHelioAccount* account() const override { return nullptr; }
    QObject* scriptIpcEventHub() const override { return nullptr; }
    bool isShelllessMode() const override { return false; }
    QWidget* widget() const override { return nullptr; }
    void installPluginTranslation(const QString&, const QStringList&) override {}
    void uninstallPluginTranslation(const QString&, const QStringList&) override {}

    mutable FakeCloudSvrProxy cloud;
};
