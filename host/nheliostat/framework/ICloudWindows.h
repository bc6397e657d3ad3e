#pragma once

#include <QString>

#include <functional>

class NHelioMainWindow;
class QJsonObject;
class QWidget;

/**
 * The windows of the cloud that a program shows; see NHelioCloudSvrProxy for what each is for. A null parent
 * stands for the window in front. User-interface thread; none of the operations blocks.
 */
class ICloudWindows
{
public:
    virtual ~ICloudWindows() = default;
    virtual void showUploadProgress(QWidget* parent) = 0;
    virtual void showDownloadProgress(QWidget* parent) = 0;
    virtual void showLoginPrompt(QWidget* parent, const QString& reason, const QString& source) = 0;
    virtual void showMembershipUpgrade(const QString& pageSource) = 0;
    virtual void openVirtualCloudDisk(const QString& userId, const QString& groupId, const QString& folderId,
                                      bool newWindow) = 0;
    virtual void coverWhileToggling(QWidget* widget, std::function<void()> completed) = 0;
    virtual void printFile(NHelioMainWindow* window, const QString& path, const QString& fileId,
                           std::function<void(const QJsonObject&)> completed) = 0;
};
