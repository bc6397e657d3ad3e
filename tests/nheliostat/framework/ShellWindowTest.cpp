#include "FakePage.h"
#include "nheliostat/framework/ShellApplication.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellMainWindow.h"

#include <gmock/gmock.h>

#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

class ShellWindow : public testing::Test
{
protected:
    void SetUp() override
    {
        QGuiApplication::setApplicationDisplayName(s("The shell"));
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    }
    FakePage* add(const char* name)
    {
        auto* page = new FakePage(s(name), log);
        window->area().addPage(page);
        return page;
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier)
    {
        QTest::keyClick(window.data(), key, modifiers);
    }

    QStringList log;
    ShellApplication application{ShellApplication::Setup{}};
    QPointer<ShellMainWindow> window = application.openMainWindow();
};

TEST_F(ShellWindow, ItsTitleFollowsTheCurrentPage)
{
    FakePage* first = add("First");
    FakePage* second = add("Second");
    EXPECT_EQ(window->windowTitle(), s("First — The shell"));
    window->area().setCurrentPage(second);
    EXPECT_EQ(window->windowTitle(), s("Second — The shell"));
    second->title = s("Renamed");
    second->subPage()->setWindowTitle(s("Renamed"));
    EXPECT_EQ(window->windowTitle(), s("Renamed — The shell"));
    first->title = s("Not shown");
    first->subPage()->refreshIcon();
    EXPECT_EQ(window->windowTitle(), s("Renamed — The shell"));
    delete first;
    delete second;
    EXPECT_EQ(window->windowTitle(), s("The shell"));
}

TEST_F(ShellWindow, NewPagesAreAskedForInThreeWays)
{
    int asked = 0;
    application.setNewPageHandler([&](ShellMainWindow& where) { asked += &where == window ? 1 : 100; });
    press(Qt::Key_T);
    EXPECT_EQ(asked, 1);
    window->findChild<QPushButton*>(s("emptyNewPageButton"))->click();
    EXPECT_EQ(asked, 2);
    window->findChild<QToolButton*>(s("newPageButton"))->click();
    EXPECT_EQ(asked, 3);
}

TEST_F(ShellWindow, TheKeyboardStepsThroughThePagesAndRefreshesOne)
{
    press(Qt::Key_R);
    press(Qt::Key_Tab);
    const QVector<NHelioAppPage*> pages = {add("a"), add("b"), add("c")};
    for (const int expected : {1, 2, 0}) {
        press(Qt::Key_Tab);
        EXPECT_EQ(window->area().currentPage(), pages.at(expected));
    }
    press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(window->area().currentPage(), pages.at(2));
    press(Qt::Key_R);
    EXPECT_EQ(log.last(), s("c.refreshPage"));
}

TEST_F(ShellWindow, ItClosesWithItsPagesUnlessOneRefuses)
{
    FakePage* current = add("current");
    FakePage* refusing = add("refusing");
    FakePage* released = add("released");
    released->released = true;
    refusing->refusesToClose = true;
    window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_TRUE(window);
    EXPECT_EQ(window->area().currentPage(), current);
    refusing->refusesToClose = false;
    log.clear();
    window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(window);
    EXPECT_TRUE(application.mainWindows().isEmpty());
    EXPECT_FALSE(log.contains(s("released.load"))) << "a page was brought back only to be closed";
    EXPECT_EQ(log.filter(s("destroyed in its window")).size(), 3);
}

TEST_F(ShellWindow, ThePagesGoWhileTheirWindowStandsWhenItIsDeleted)
{
    add("a");
    add("b");
    delete window;
    EXPECT_EQ(log.filter(s("destroyed in its window")).size(), 2);
}

TEST_F(ShellWindow, TheWorkAreaKnowsWhatIsShown)
{
    FakePage* page = add("kept");
    const QString id = page->subPage()->workAreaItemId();
    ASSERT_FALSE(id.isEmpty());
    page->subPage()->setWindowTitle(s("Title"));
    auto* workArea = static_cast<ShellWorkAreaManager*>(window->workAreaManager());
    workArea->updateItem(s("unknown"));
    ASSERT_EQ(workArea->items().size(), 1);
    EXPECT_EQ(workArea->items().first().title, s("Title"));
    EXPECT_EQ(workArea->items().first().pageType, FakePage::type);
    page->close();
    EXPECT_TRUE(workArea->items().isEmpty());
}

} // namespace
