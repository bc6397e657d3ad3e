#pragma once

#include "nheliostat/NHelioCloudSvrProxy.h"

#include <QJsonObject>

/** A cloud service that answers nothing; tests replace the operations that they look at. */
class SilentCloudSvrProxy : public NHelioCloudSvrProxy
{
public:
    bool isLoggedIn() const override { return user.loggedIn; }
    bool currentUserInfo(NHelioUserInfo& info) const override
    {
        info = user;
        return true;
    }
    QString createDOPRootData(const QString&, QObject*, const char*) override { return {}; }
    QString removeDOPRootData(const QString&, QObject*, const char*) override { return {}; }
    QString getDOPFileInfo(const QString&, const QString&, QObject*, const char*) override { return {}; }
    QString updateDOPFileInfo(const QString&, const QString&, const QString&, QObject*, const char*) override
    {
        return {};
    }
    QString unzipDOPFile(const QString&, const QString&, const QString&, const QString&, const QString&,
                         QObject*, const char*) override
    {
        return {};
    }
    QString folderUpload(const QString&, const QString&, const QString&, QObject*, const char*,
                         const QString&) override
    {
        return {};
    }
    QString batchUploadFileListToAnyExistedPath(const QString&, const QString&, const QStringList&,
                                                const QString&, bool, QObject*, const char*,
                                                const QString&) override
    {
        return {};
    }
    QString downloadDir(const QString&, const QStringList&, const QString&, QObject*, const QString&) override
    {
        return {};
    }
    QString downloadCloudFiles(const QStringList&, const QString&, const QString&, QObject*,
                               const char*) override
    {
        return {};
    }
    QString invokeCloudFunction(const QString&, QGenericArgument, QObject*, const char*) override
    {
        return {};
    }
    QString callCloudMethod(const QString&, const QStringList&, QObject*, const char*) override { return {}; }
    QString tavaDlgObjIdentifier() const override { return QStringLiteral("silent"); }
    void sendDialogCommand(const QString&, const QString&, NHelioSubPage*) override {}
    void showFileUploadProgress(QWidget*) override {}
    void showFileDownloadProgress(QWidget*) override {}
    void showLoginPrompt(QWidget*, const QString&, const QString&) override {}
    void showMembershipUpgrade(const QString&, const QString&, int, int) override {}
    void openVirtualCloudDisk(const QString&, const QString&, const QString&, const QString&, bool) override
    {
    }
    void prepareToggleModeLoadingMask(QWidget*, std::function<void()>) override {}
    void notifyOpenPrintFiles(NHelioMainWindow*, const QString&, const QString&,
                              std::function<void(const QJsonObject&)>) override
    {
    }

    NHelioUserInfo user;
};
