#include "nheliostat/framework/ShellApplication.h"
#include "FactoryItems.h"
#include "FakePage.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellMainWindow.h"

#include <gmock/gmock.h>

#include <QSignalSpy>

#include <memory>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

class ShellApplicationWithPages : public testing::Test
{
protected:
    FakePage* add(const char* name)
    {
        auto* page = new FakePage(s(name), log);
        window->area().addPage(page);
        return page;
    }

    QStringList log;
    std::unique_ptr<ShellApplication> application =
        std::make_unique<ShellApplication>(ShellApplication::Setup{});
    ShellMainWindow* window = application->openMainWindow();
};

TEST_F(ShellApplicationWithPages, ReleasesTheInactivePagesThatCanBeReleased)
{
    FakePage* current = add("current");
    FakePage* busy = add("busy");
    FakePage* idle = add("idle");
    current->discardable = idle->discardable = true;
    log.clear();
    auto* timer = application->findChild<QTimer*>(s("discardTimer"));
    EXPECT_TRUE(timer->isActive());
    EXPECT_EQ(timer->interval(), 60'000);
    EXPECT_TRUE(QMetaObject::invokeMethod(timer, "timeout"));
    EXPECT_EQ(log, QStringList({s("idle.releasePage")}));
    application->releaseInactivePages();
    EXPECT_EQ(log.size(), 1) << "a released page is not released again";

    window->area().setCurrentPage(idle);
    window->area().setCurrentPage(busy);
    log.clear();
    application->releaseInactivePages();
    EXPECT_EQ(log, QStringList({s("current.releasePage"), s("idle.releasePage")}));
}

TEST_F(ShellApplicationWithPages, TellsOfTheUser)
{
    QSignalSpy proxySignal(application->cloudSvrProxy(), &NHelioCloudSvrProxy::loginStatusChanged);
    QSignalSpy accountSignal(application->account(), &NHelioAccount::signalLoginStatusChanged);
    NHelioUserInfo user;
    user.loggedIn = true;
    user.userId = s("42");
    user.sessionKey = s("key");
    application->setUser(user);
    EXPECT_EQ(proxySignal.count(), 1);
    EXPECT_EQ(accountSignal.count(), 1);
    NHelioUserInfo seen;
    EXPECT_TRUE(NHelioApplication::instance()->cloudSvrProxy()->currentUserInfo(seen));
    EXPECT_EQ(seen.userId, s("42"));
    EXPECT_TRUE(application->account()->isLoggedIn());
    EXPECT_EQ(application->account()->sessionId(), s("key"));
}

TEST_F(ShellApplicationWithPages, ANewPageIsADocumentsPageThatIsToldNothingAndLoaded)
{
    EXPECT_EQ(application->openDocumentsPage(*window, s("text")), nullptr) << "no such type is registered";
    add("first");
    const FakeFactoryItem item(1, [this](QWidget* parent) { return new FakePage(s("new"), log, parent); });
    Q_EMIT window->newPageRequested();
    EXPECT_EQ(window->area().currentPage(), window->area().pageAt(1));
    const QStringList calls = log.filter(s("new."));
    EXPECT_LT(calls.indexOf(s("new.notify()")), calls.indexOf(s("new.load")));
    EXPECT_EQ(calls.count(s("new.load")), 1);
    EXPECT_GT(application->collectInfo().openStartTime(), 0);
}

TEST_F(ShellApplicationWithPages, SaysThatItQuitsBeforeItsPagesGoAndIsGoneThen)
{
    add("page");
    QStringList order;
    QObject::connect(application.get(), &NHelioApplication::aboutToQuit, application.get(), [&] {
        order.append(s("quit"));
        EXPECT_FALSE(log.contains(s("page.destroyed in its window")));
    });
    application.reset();
    EXPECT_EQ(order, QStringList({s("quit")}));
    EXPECT_TRUE(log.contains(s("page.destroyed in its window")));
    EXPECT_EQ(NHelioApplication::instance(), nullptr);
}

TEST_F(ShellApplicationWithPages, FindsTheWindowOfAnythingInside)
{
    FakePage* page = add("page");
    QObject stranger;
    QObject deepInside(page->subPage());
    EXPECT_EQ(application->findRelativeHelioMainWindow(&deepInside), window);
    EXPECT_EQ(application->findRelativeHelioMainWindow(window), window);
    EXPECT_EQ(application->findRelativeHelioMainWindow(&stranger), nullptr);
    EXPECT_EQ(application->findRelativeHelioMainWindow(nullptr), nullptr);
}

TEST(ShellCollectInfo, KnowsTheStartOfAnOpenForAMinute)
{
    qint64 now = 5;
    ShellCollectInfoMgr info([&now] { return now; });
    EXPECT_EQ(info.openStartTime(), 0);
    info.markOpenStarted();
    now += 60'000'000'000;
    EXPECT_EQ(info.openStartTime(), 5);
    ++now;
    EXPECT_EQ(info.openStartTime(), 0);
}

TEST(PluginTranslations, MissingFilesAreNoError)
{
    PluginTranslators translators(s("/nonexistent"));
    translators.install(s("module"), {s("module")});
    translators.uninstall(s("module"));
    translators.uninstall(s("module"));
    EXPECT_EQ(QCoreApplication::translate("context", "text"), s("text"));
}

} // namespace
