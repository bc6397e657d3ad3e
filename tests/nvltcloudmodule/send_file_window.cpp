#include "nvltcloudmodule/NVltCloudWidgets.h"
#include "nvltcloudmodule/SendFileRequest.h"
#include "support/ShellFixture.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLibrary>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include <algorithm>

using testing::ElementsAre;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

class SendFileWindowOf : public ShellFixture
{
protected:
    void SetUp() override
    {
        ShellFixture::SetUp();
        start();
        signIn(directory.path());
        QLibrary library(s(WINDOWS_LIBRARY));
        const auto create = reinterpret_cast<CreateVltCloudWidgetsProxyFunction>(
            library.resolve("CreateVltCloudWidgetsProxy"));
        ASSERT_TRUE(create) << qPrintable(library.errorString());
        widgets.reset(create(s("skyleaf")));
    }

    void signIn(const QString& localDataDir)
    {
        NHelioUserInfo user;
        user.userId = s("u1");
        user.loggedIn = true;
        user.localDataDir = localDataDir;
        shell->setUser(user);
    }

    QWidget* open(const QVariantMap& arguments)
    {
        QVariantMap all = arguments;
        all.insert(s("widgetType"), s("sendFileWindow"));
        widgets->openWindow(all);
        return openWindows().value(0, nullptr);
    }

    static QWidgetList openWindows()
    {
        QWidgetList open = QApplication::topLevelWidgets();
        const auto isOther = [](const QWidget* each) {
            return each->objectName() != s("sendFile") || !each->isVisible();
        };
        open.erase(std::remove_if(open.begin(), open.end(), isOther), open.end());
        return open;
    }

    template <typename Widget>
    static Widget& part(QWidget* sendWindow, const char* name)
    {
        auto* found = sendWindow->findChild<Widget*>(s(name));
        EXPECT_TRUE(found) << name;
        return *found;
    }

    std::unique_ptr<NVltCloudWidgets> widgets;
};

TEST_F(SendFileWindowOf, PutsWhatIsSentIntoTheOutbox)
{
    QWidget* sendWindow = open({{s("fileId"), 100001}, {s("fileName"), s("Plan <b>.vs")}});
    ASSERT_TRUE(sendWindow);
    part<QPushButton>(sendWindow, "send").click();
    const auto& outcome = part<QLabel>(sendWindow, "outcome");
    EXPECT_EQ(outcome.text(), s("Enter at least one user.")) << "nobody to send it to";

    part<QLineEdit>(sendWindow, "recipients").setText(s(" ann, bob;ann "));
    part<QPlainTextEdit>(sendWindow, "message").setPlainText(s("two\nlines"));
    part<QPushButton>(sendWindow, "send").click();
    EXPECT_EQ(outcome.text(), s("Sent to ann, bob."));
    QFile outbox(directory.filePath(s("outbox/sent-files.jsonl")));
    ASSERT_TRUE(outbox.open(QIODevice::ReadOnly));
    const QJsonObject record = QJsonDocument::fromJson(outbox.readLine()).object();
    EXPECT_EQ(record.value(s("fileId")), s("100001"));
    EXPECT_EQ(record.value(s("to")), (QJsonArray{s("ann"), s("bob")}));
    EXPECT_EQ(record.value(s("message")), s("two\nlines"));
    EXPECT_TRUE(outbox.atEnd());

    part<QPushButton>(sendWindow, "copyLink").click();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), s("https://docs.test/p/100001"));
}

TEST_F(SendFileWindowOf, SaysWhyNothingIsSent)
{
    QFile blocked(directory.filePath(s("outbox")));
    ASSERT_TRUE(blocked.open(QIODevice::WriteOnly));
    QWidget* sendWindow = open({{s("fileId"), s("2")}});
    ASSERT_TRUE(sendWindow);
    part<QLineEdit>(sendWindow, "recipients").setText(s("ann"));
    part<QPushButton>(sendWindow, "send").click();
    EXPECT_EQ(part<QLabel>(sendWindow, "outcome").text(), s("The outbox cannot be made."));
    EXPECT_EQ(part<QLineEdit>(sendWindow, "recipients").text(), s("ann")) << "nothing typed is lost";
}

TEST_F(SendFileWindowOf, ThereIsOneForEachFile)
{
    open({{s("fileId"), s("3")}});
    open({{s("fileid"), s("4")}});
    widgets.reset(); // the windows stay
    EXPECT_EQ(openWindows().size(), 2);
    TearDown();
    SetUp();
    open({{s("fileName"), s("no id")}});
    EXPECT_EQ(openWindows().size(), 0) << "those went with their main window, and a file without id has none";
    widgets->openWindow({{s("widgetType"), s("other")}, {s("fileId"), s("5")}});
    EXPECT_EQ(openWindows().size(), 0);
    open({{s("fileId"), s("3")}});
    open({{s("fileId"), s("3")}});
    EXPECT_EQ(openWindows().size(), 1);
}

} // namespace
