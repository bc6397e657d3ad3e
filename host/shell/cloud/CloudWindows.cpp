#include "shell/cloud/CloudWindows.h"

#include "shell/UserSession.h"
#include "shell/cloud/BusyCover.h"
#include "shell/cloud/DiagnosisWindow.h"
#include "shell/cloud/LoginWindow.h"
#include "shell/cloud/NoticeWindow.h"
#include "shell/cloud/ProxyTransferSource.h"
#include "shell/cloud/SitePages.h"
#include "shell/cloud/TransferWindow.h"
#include "shell/dialogs/DialogAnswers.h"

#include "nheliostat/framework/ShellApplication.h"
#include "nheliostat/framework/ShellCloudSvrProxy.h"
#include "nheliostat/framework/ShellMainWindow.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NDomainMgr.h"
#include "zeolite/NxLoggerLite.h"

#include <QJsonObject>
#include <QNetworkProxy>

#include <utility>

namespace shell {

using vlt::cloudsvr::TransferDirection;
using vlt::cloudsvr::TransferList;

namespace {

const QString logTag = QStringLiteral("shell");
constexpr int diagnosisKind = 2;

QString siteUrl()
{
    NCoreApplication* core = NCoreApplication::instance();
    NDomainMgr* domains = core ? core->getDomainMgr() : nullptr;
    return domains ? domains->getDomainUrl(QStringLiteral("quill")) : QString();
}

Diagnosis::Places diagnosedPlaces(const QPointer<ShellApplication>& application)
{
    const QNetworkProxy gateway = QNetworkProxy::applicationProxy();
    Diagnosis::Places places;
    places.documents = QUrl(siteUrl());
    places.drive = sitepages::drive(siteUrl(), {}, {});
    places.gatewayHost = gateway.hostName();
    places.gatewayPort = gateway.port();
    places.askCloudService = [application](const std::function<void(bool)>& answered) {
        if (application)
            application->cloudService().listTransfers(
                TransferDirection::Upload, 0, 1,
                [answered](bool success, const TransferList&) { answered(success); });
    };
    return places;
}

} // namespace

CloudWindows::CloudWindows(ShellApplication& application, UserSession& user, const Attendance& attendance,
                           QObject* parent)
    : QObject(parent)
    , m_application(&application)
    , m_user(user)
    , m_attendance(attendance)
    , m_printing(attendance.answers)
{
    application.cloudService().setWindows(this);
    connect(&application.cloudService(), &ShellCloudSvrProxy::orderFailed, this,
            &CloudWindows::onOrderFailed);
    connect(&application, &ShellApplication::loginRequested, this, &CloudWindows::onLoginRequested);
}

CloudWindows::~CloudWindows()
{
    if (m_application)
        m_application->cloudService().setWindows(nullptr);
    // Those that no main window took with it.
    const QVector<QPointer<QWidget>> windows{m_uploads.data(),   m_downloads.data(),  m_login.data(),
                                             m_diagnosis.data(), m_membership.data(), m_failedOrder.data()};
    for (const QPointer<QWidget>& window : windows)
        delete window;
}

QWidget* CloudWindows::windowAround(QWidget* parent) const
{
    if (!m_application)
        return nullptr;
    QWidget* window = m_application->findRelativeHelioMainWindow(parent);
    return window ? window : m_application->widget();
}

void CloudWindows::showUploadProgress(QWidget* parent)
{
    showTransfers(m_uploads, TransferDirection::Upload, parent);
}

void CloudWindows::showDownloadProgress(QWidget* parent)
{
    showTransfers(m_downloads, TransferDirection::Download, parent);
}

void CloudWindows::showTransfers(QPointer<TransferWindow>& window, TransferDirection direction,
                                 QWidget* parent)
{
    if (!m_application)
        return;
    if (!window)
        window = new TransferWindow(new ProxyTransferSource(m_application->cloudService(), direction),
                                    windowAround(parent));
    window->present();
}

void CloudWindows::onLoginRequested()
{
    showLoginPrompt(nullptr, {}, {});
}

void CloudWindows::showLoginPrompt(QWidget* parent, const QString& reason, const QString& source)
{
    Q_UNUSED(source)
    const auto answer =
        m_attendance.answers ? m_attendance.answers->take(QStringLiteral("login")) : std::nullopt;
    if (answer) {
        const QJsonObject typed = answer->toObject();
        const QString userId = typed.value(QLatin1String("userId")).toString();
        const QString error = answer->isNull()
                                  ? QString()
                                  : m_user.signIn(userId, typed.value(QLatin1String("password")).toString());
        NxLoggerLite::writeInfo(logTag,
                                answer->isNull()
                                    ? QStringLiteral("dialog cancelled: login")
                                    : QStringLiteral("dialog answered: login: \"%1\" %2").arg(userId, error));
        return;
    }
    if (m_attendance.signsInUnasked) {
        m_user.signIn();
        return;
    }
    if (!m_login)
        m_login = new LoginWindow([this](const QString& userId,
                                         const QString& password) { return m_user.signIn(userId, password); },
                                  windowAround(parent));
    m_login->ask(reason, m_user.deployedUserId());
}

void CloudWindows::showMembershipUpgrade(const QString& pageSource)
{
    const QUrl page = sitepages::membership(siteUrl(), pageSource);
    if (!page.isValid()) {
        showMembershipNotice();
        return;
    }
    const auto showIt = [this, page](bool isServed) {
        if (isServed && m_application)
            m_application->openUrl(page.toString(QUrl::FullyEncoded), nullptr);
        else
            showMembershipNotice();
    };
    sitepages::whetherServed(page, this, showIt);
}

void CloudWindows::onOrderFailed(TransferDirection direction, const QString& message)
{
    const QString text = direction == TransferDirection::Upload
                             ? tr("What you wanted to upload is not uploaded. %1.")
                             : tr("What you wanted to download is not downloaded. %1.");
    delete m_failedOrder; // the latest is the one to see
    m_failedOrder = new NoticeWindow(QStringLiteral("failedTransfer"), tr("Transfers"), text.arg(message),
                                     windowAround(nullptr));
    m_failedOrder->present();
}

void CloudWindows::showMembershipNotice()
{
    if (!m_membership)
        m_membership = new NoticeWindow(QStringLiteral("membership"), tr("Membership"),
                                        tr("This service offers no memberships. All functions of your "
                                           "documents are available to you."),
                                        windowAround(nullptr));
    m_membership->present();
}

void CloudWindows::openVirtualCloudDisk(const QString& userId, const QString& groupId,
                                        const QString& folderId, bool newWindow)
{
    Q_UNUSED(userId) // the site knows the user by the session
    const QUrl page = sitepages::drive(siteUrl(), groupId, folderId);
    if (!m_application || !page.isValid()) {
        NxLoggerLite::writeWarning(logTag, QStringLiteral("there is no site whose drive could be shown"));
        return;
    }
    auto* window = newWindow ? nullptr : qobject_cast<ShellMainWindow*>(m_application->widget());
    if (!window) {
        window = m_application->openMainWindow();
        window->show();
    }
    m_application->openDocumentsPage(*window, page.toString(QUrl::FullyEncoded));
}

void CloudWindows::coverWhileToggling(QWidget* widget, std::function<void()> completed)
{
    if (widget)
        new BusyCover(*widget, std::move(completed));
    else
        QMetaObject::invokeMethod(this, std::move(completed), Qt::QueuedConnection);
}

void CloudWindows::printFile(NHelioMainWindow* window, const QString& path, const QString& fileId,
                             std::function<void(const QJsonObject&)> completed)
{
    m_printing.print(windowAround(window), path, fileId, std::move(completed));
}

CloudServiceLink::StartDiagnosis CloudWindows::diagnosisStarter()
{
    return [guarded = QPointer<CloudWindows>(this)](int kind, const QString& applicationId, int& resultCode,
                                                    const QString& title) {
        Q_UNUSED(applicationId)
        const bool isKnown = guarded && kind == diagnosisKind;
        resultCode = isKnown ? 0 : 1;
        if (isKnown)
            guarded->showDiagnosis(QString::fromUtf8(QByteArray::fromBase64(title.toLatin1())));
        return isKnown;
    };
}

void CloudWindows::showDiagnosis(const QString& title)
{
    if (!m_diagnosis)
        m_diagnosis = new DiagnosisWindow(diagnosedPlaces(m_application), windowAround(nullptr));
    m_diagnosis->open(title);
}

} // namespace shell
