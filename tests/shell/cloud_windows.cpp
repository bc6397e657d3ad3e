#include "shell/UserSession.h"
#include "shell/cloud/CloudWindows.h"
#include "shell/cloud/Diagnosis.h"
#include "shell/cloud/SitePages.h"
#include "shell/dialogs/DialogAnswers.h"
#include "support/HttpStub.h"
#include "support/ShellFixture.h"

#include "nheliostat/framework/ShellCloudSvrProxy.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTcpServer>

using shell::Diagnosis;
using testing::HasSubstr;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

TEST(SitePagesOf, EscapeWhatTheyAreGiven)
{
    using namespace shell::sitepages;
    const QString site = s("https://docs.test");
    EXPECT_EQ(membership(site, s("a+b &c")).toEncoded(), "https://docs.test/membership?source=a%2Bb%20%26c");
    EXPECT_EQ(membership(site, {}).toEncoded(), "https://docs.test/membership");
    EXPECT_EQ(drive(site, {}, {}).toEncoded(), "https://docs.test/drive");
    EXPECT_EQ(drive(site, {}, s("12")).toEncoded(), "https://docs.test/drive#0/12");
    EXPECT_FALSE(drive({}, {}, {}).isValid());
}

class CloudWindowsOf : public ShellFixture
{
protected:
    void serve(bool signsInUnasked)
    {
        start();
        shell::HostUser deployed;
        deployed.userId = s("ann");
        user = std::make_unique<shell::UserSession>(deployed, *shell, *host);
        windows = std::make_unique<shell::CloudWindows>(
            *shell, *user,
            shell::CloudWindows::Attendance{signsInUnasked ? &answers : nullptr, signsInUnasked});
        window->show();
    }
    void TearDown() override
    {
        windows.reset();
        user.reset();
        ShellFixture::TearDown();
    }
    QWidget* shown(const char* name) const
    {
        auto* found = window->findChild<QWidget*>(s(name));
        return found && found->isVisible() ? found : nullptr;
    }

    shell::DialogAnswers answers;
    std::unique_ptr<::shell::UserSession> user;
    std::unique_ptr<shell::CloudWindows> windows;
};

TEST_F(CloudWindowsOf, SignsInWhoTheDeploymentKnows)
{
    serve(false);
    Q_EMIT shell->loginRequested();
    QWidget* login = shown("login");
    ASSERT_TRUE(login);
    EXPECT_FALSE(shell->user().loggedIn);
    login->findChild<QLineEdit*>(s("userId"))->setText(s("bob"));
    login->findChild<QLineEdit*>(s("password"))->setText(s("secret"));
    login->findChild<QPushButton*>(s("signIn"))->click();
    EXPECT_THAT(login->findChild<QLabel*>(s("error"))->text().toStdString(), HasSubstr("bob"));
    EXPECT_FALSE(shell->user().loggedIn);
    login->findChild<QLineEdit*>(s("userId"))->setText(s(" ann "));
    login->findChild<QPushButton*>(s("signIn"))->click();
    EXPECT_TRUE(shell->user().loggedIn);
    EXPECT_EQ(shell->user().userId, s("ann"));
    EXPECT_FALSE(shown("login"));
}

TEST_F(CloudWindowsOf, SignsInWithoutAWindowWhereNobodySits)
{
    serve(true);
    answers.add(s("login"), QJsonValue());
    Q_EMIT shell->loginRequested();
    EXPECT_FALSE(shell->user().loggedIn) << "cancelled";
    answers.add(s("login"), QJsonObject{{s("userId"), s("bob")}, {s("password"), s("x")}});
    Q_EMIT shell->loginRequested();
    EXPECT_FALSE(shell->user().loggedIn) << "somebody else";
    Q_EMIT shell->loginRequested();
    EXPECT_TRUE(shell->user().loggedIn);
    EXPECT_FALSE(shown("login"));
}

TEST_F(CloudWindowsOf, ThereIsOneProgressWindowForEachDirection)
{
    serve(true);
    NHelioCloudSvrProxy* proxy = shell->cloudSvrProxy();
    proxy->showFileUploadProgress(nullptr);
    QWidget* uploads = shown("uploads");
    proxy->showFileDownloadProgress(window);
    ASSERT_TRUE(uploads);
    EXPECT_TRUE(shown("downloads"));
    uploads->close();
    proxy->showFileUploadProgress(nullptr);
    EXPECT_EQ(shown("uploads"), uploads);
    EXPECT_EQ(window->findChildren<QWidget*>(s("uploads")).size(), 1);
}

TEST_F(CloudWindowsOf, TellsOfTransfersThatTheServiceDidNotTake)
{
    using vlt::cloudsvr::TransferDirection;
    serve(true);
    const auto text = [this] {
        QWidget* notice = shown("failedTransfer");
        return notice ? notice->findChild<QLabel*>()->text() : QString();
    };
    Q_EMIT shell->cloudService().orderFailed(TransferDirection::Upload, s("It does not answer"));
    EXPECT_EQ(text(), s("What you wanted to upload is not uploaded. It does not answer."));
    Q_EMIT shell->cloudService().orderFailed(TransferDirection::Download, s("No directory"));
    EXPECT_EQ(text(), s("What you wanted to download is not downloaded. No directory."));
    EXPECT_EQ(window->findChildren<QWidget*>(s("failedTransfer")).size(), 1);
}

TEST_F(CloudWindowsOf, CoversUntilTheCallerIsTold)
{
    serve(true);
    int covered = 0;
    const auto told = [&] {
        ++covered;
        EXPECT_TRUE(shown("busyCover") || covered > 1);
    };
    windows->coverWhileToggling(window->centralArea(), told);
    EXPECT_EQ(covered, 0);
    for (int i = 0; i < 10; ++i) {
        turn();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    EXPECT_EQ(covered, 1);
    EXPECT_FALSE(shown("busyCover"));
    QWidget hidden;
    windows->coverWhileToggling(&hidden, told);
    windows->coverWhileToggling(nullptr, told);
    turn();
    EXPECT_EQ(covered, 3) << "what cannot be seen needs no cover";
}

TEST_F(CloudWindowsOf, OffersMembershipsWhereTheSiteHasThem)
{
    HttpStub site;
    services.domains.insert(s("quill"), site.origin());
    site.answer("/", {200, "start page", {}});
    serve(true);
    windows->showMembershipUpgrade(s("menu"));
    ASSERT_TRUE(waitUntil([this] { return shown("membership") != nullptr; })) << "a start page is no offer";
    EXPECT_EQ(window->centralArea()->pages().size(), 0);
    shown("membership")->close();

    site.answer("/membership", {200, "offer", {}});
    windows->showMembershipUpgrade(s("menu"));
    ASSERT_TRUE(waitUntil([this] { return window->centralArea()->pages().size() == 1; }));
    EXPECT_EQ(site.last("/membership").target, "/membership?source=menu");
    EXPECT_FALSE(shown("membership"));
}

TEST_F(CloudWindowsOf, OpensTheDiagnosisOfItsKindOnly)
{
    serve(true);
    const auto start = windows->diagnosisStarter();
    int code = 0;
    EXPECT_FALSE(start(3, s("id"), code, {}));
    EXPECT_NE(code, 0);
    EXPECT_TRUE(start(2, s("id"), code, s("VGl0bGU=")));
    EXPECT_EQ(code, 0);
    ASSERT_TRUE(shown("diagnosis"));
    EXPECT_EQ(shown("diagnosis")->windowTitle(), s("Title"));
    windows.reset();
    EXPECT_FALSE(start(2, s("id"), code, {}));
}

TEST_F(CloudWindowsOf, TheDiagnosisTellsWhatCannotBeReached)
{
    start();
    QTcpServer gateway;
    ASSERT_TRUE(gateway.listen(QHostAddress::LocalHost));
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost));
    const QUrl refusing(s("http://127.0.0.1:%1/").arg(closed.serverPort()));
    closed.close();
    Diagnosis diagnosis({refusing, QUrl(), s("127.0.0.1"), gateway.serverPort(),
                         [](const auto& answered) { answered(true); }});
    QSignalSpy changed(&diagnosis, &Diagnosis::changed);
    diagnosis.start();
    while (diagnosis.isRunning() && changed.wait(20000)) {
    }
    const std::string report = shell::diagnosisReport(diagnosis.checks()).toStdString();
    EXPECT_THAT(report, HasSubstr("Documents service: FAILED"));
    EXPECT_THAT(report, HasSubstr("Drive: FAILED, 0 ms, no address"));
    EXPECT_THAT(report, HasSubstr("Cloud service: ok"));
    EXPECT_THAT(report, HasSubstr("Request gateway: ok"));
}

} // namespace
