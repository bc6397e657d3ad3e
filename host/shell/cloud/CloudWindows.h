#pragma once

#include "shell/CloudServiceLink.h"
#include "shell/cloud/PrintService.h"

#include "nheliostat/framework/ICloudWindows.h"
#include "vltcloudsvr/common/Transfers.h"

#include <QObject>
#include <QPointer>

class ShellApplication;

namespace shell {

class DiagnosisWindow;
class DialogAnswers;
class LoginWindow;
class NoticeWindow;
class TransferWindow;
class UserSession;

/**
 * The windows of the cloud: one of each, used again when it is asked for again. The application's proxy and
 * its scripts' wish to sign in lead here while this lives.
 */
class CloudWindows final : public QObject, public ICloudWindows
{
    Q_OBJECT
public:
    /** Whether somebody sits before the screen. */
    struct Attendance
    {
        DialogAnswers* answers = nullptr; //!< null: somebody does
        bool signsInUnasked = false;      //!< the sign-in without an answer signs the deployed user in
    };

    /** The application may go first; `user` and the answers outlive this. */
    CloudWindows(ShellApplication& application, UserSession& user, const Attendance& attendance,
                 QObject* parent = nullptr);
    ~CloudWindows() override;

    /** Starts the diagnosis, of kind 2; other kinds are not known. */
    CloudServiceLink::StartDiagnosis diagnosisStarter();

    void showUploadProgress(QWidget* parent) override;
    void showDownloadProgress(QWidget* parent) override;
    void showLoginPrompt(QWidget* parent, const QString& reason, const QString& source) override;
    void showMembershipUpgrade(const QString& pageSource) override;
    void openVirtualCloudDisk(const QString& userId, const QString& groupId, const QString& folderId,
                              bool newWindow) override;
    void coverWhileToggling(QWidget* widget, std::function<void()> completed) override;
    void printFile(NHelioMainWindow* window, const QString& path, const QString& fileId,
                   std::function<void(const QJsonObject&)> completed) override;

private:
    void onLoginRequested();
    void showTransfers(QPointer<TransferWindow>& window, vlt::cloudsvr::TransferDirection direction,
                       QWidget* parent);
    void showDiagnosis(const QString& title);
    void onOrderFailed(vlt::cloudsvr::TransferDirection direction, const QString& message);
    void showMembershipNotice();
    /** The main window of a widget; of null the one in front. */
    QWidget* windowAround(QWidget* parent) const;

    QPointer<ShellApplication> m_application;
    UserSession& m_user;
    const Attendance m_attendance;
    PrintService m_printing;
    // Each belongs to the main window that it was opened from.
    QPointer<TransferWindow> m_uploads;
    QPointer<TransferWindow> m_downloads;
    QPointer<LoginWindow> m_login;
    QPointer<DiagnosisWindow> m_diagnosis;
    QPointer<NoticeWindow> m_membership;
    QPointer<NoticeWindow> m_failedOrder;
};

} // namespace shell
