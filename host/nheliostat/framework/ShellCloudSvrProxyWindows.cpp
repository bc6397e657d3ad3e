#include "nheliostat/framework/ICloudWindows.h"
#include "nheliostat/framework/ShellCloudSvrProxy.h"

#include <QJsonObject>

void ShellCloudSvrProxy::showFileUploadProgress(QWidget* parent)
{
    if (m_windows)
        m_windows->showUploadProgress(parent);
}

void ShellCloudSvrProxy::showFileDownloadProgress(QWidget* parent)
{
    if (m_windows)
        m_windows->showDownloadProgress(parent);
}

void ShellCloudSvrProxy::showLoginPrompt(QWidget* parent, const QString& reason, const QString& source)
{
    if (m_windows)
        m_windows->showLoginPrompt(parent, reason, source);
}

void ShellCloudSvrProxy::showMembershipUpgrade(const QString& pageSource, const QString& product, int kind,
                                               int option)
{
    Q_UNUSED(product)
    Q_UNUSED(kind)
    Q_UNUSED(option)
    if (m_windows)
        m_windows->showMembershipUpgrade(pageSource);
}

void ShellCloudSvrProxy::openVirtualCloudDisk(const QString& userId, const QString& groupId,
                                              const QString& folderId, const QString& from, bool newWindow)
{
    Q_UNUSED(from)
    if (m_windows)
        m_windows->openVirtualCloudDisk(userId, groupId, folderId, newWindow);
}

void ShellCloudSvrProxy::prepareToggleModeLoadingMask(QWidget* widget, std::function<void()> completed)
{
    if (m_windows)
        m_windows->coverWhileToggling(widget, std::move(completed));
    else
        QMetaObject::invokeMethod(this, std::move(completed), Qt::QueuedConnection);
}

void ShellCloudSvrProxy::notifyOpenPrintFiles(NHelioMainWindow* window, const QString& path,
                                              const QString& fileId,
                                              std::function<void(const QJsonObject& result)> completed)
{
    if (m_windows) {
        m_windows->printFile(window, path, fileId, std::move(completed));
        return;
    }
    const QJsonObject result{{QStringLiteral("result"), QStringLiteral("failed")},
                             {QStringLiteral("msg"), QStringLiteral("there is nothing to print with")},
                             {QStringLiteral("fileId"), fileId}};
    QMetaObject::invokeMethod(
        this, [completed = std::move(completed), result] { completed(result); }, Qt::QueuedConnection);
}
