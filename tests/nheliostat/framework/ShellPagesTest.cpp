#include "FactoryItems.h"
#include "FakePage.h"
#include "nheliostat/framework/ShellApplication.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellMainWindow.h"
#include "nheliostat/framework/ShellTab.h"
#include "nheliostat/framework/ShellTabBar.h"

#include <gmock/gmock.h>

#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTabBar>
#include <QTest>

using testing::ElementsAre;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

void runDeferredDeletes()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

class ShellPages : public testing::Test
{
protected:
    FakePage* add(const char* name)
    {
        auto* page = new FakePage(s(name), log);
        area().addPage(page);
        return page;
    }
    ShellCentralArea& area() { return window->area(); }
    QTabBar& strip() { return *window->findChild<QTabBar*>(s("tabs")); }
    NHelioTab* tabOf(const FakePage* page) { return window->tabBar()->tabOf(page->subPage()); }
    QStringList tabTexts()
    {
        QStringList texts;
        for (int index = 0; index < strip().count(); ++index)
            texts.append(strip().tabText(index));
        return texts;
    }
    bool isShown(const char* stackWidget)
    {
        return window->findChild<QStackedWidget*>(s("pageStack"))->currentWidget()->objectName() ==
               s(stackWidget);
    }

    QStringList log;
    ShellApplication application{ShellApplication::Setup{}};
    ShellMainWindow* window = application.openMainWindow();
};

TEST_F(ShellPages, TheFirstPageIsCurrentAndLaterOnesStandBehindIt)
{
    EXPECT_TRUE(isShown("emptyState"));
    FakePage* first = add("a");
    FakePage* second = add("b");
    EXPECT_THAT(area().pages(), ElementsAre(first, second));
    EXPECT_EQ(area().currentPage(), first);
    EXPECT_EQ(area().pageAt(1), second);
    EXPECT_EQ(area().pageAt(2), nullptr);
    EXPECT_EQ(tabTexts(), QStringList({s("a"), s("b")}));
    EXPECT_EQ(strip().currentIndex(), 0);
    EXPECT_NE(tabOf(first), tabOf(second));
    EXPECT_EQ(window->tabBar()->tabOf(nullptr), nullptr);
}

TEST_F(ShellPages, APageOfATypeIsMadeThenToldWhatToShow)
{
    const FakeFactoryItem item(FakePage::type,
                               [this](QWidget* parent) { return new FakePage(s("made"), log, parent); });
    QSignalSpy added(&application, &ShellApplication::pageAdded);
    NHelioAppPage* page = area().addPage(FakePage::type, s("text"), {{s("key"), 1}});
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(application.findRelativeHelioMainWindow(page->initialSubPage()), window);
    EXPECT_EQ(added.count(), 1);
    EXPECT_EQ(log.first(), s("made.createSubPage"));
    EXPECT_EQ(log.mid(log.size() - 2),
              QStringList({s("made.notify(text)"), s("made.handleNotifyParams(key)")}));
    EXPECT_FALSE(log.contains(s("made.load")));
}

TEST_F(ShellPages, NoPageComesOfATypeThatMakesNone)
{
    const FakeFactoryItem makesNothing(950);
    const FakeFactoryItem makesAnother(951, [](QWidget* parent) { return new QPushButton(parent); });
    for (const int type : {949, 950, 951})
        EXPECT_EQ(area().addPage(type, s("text"), {}), nullptr) << type;
    EXPECT_TRUE(area().pages().isEmpty());
    EXPECT_EQ(strip().count(), 0);
    EXPECT_EQ(window->findChildren<QPushButton*>().size(), 1) << "only the empty state's";
}

TEST_F(ShellPages, ChangingTheCurrentPageCallsBothPagesInOrder)
{
    add("left");
    FakePage* entered = add("entered");
    entered->released = true;
    QSignalSpy changed(&application, &ShellApplication::currentPageChanged);
    log.clear();
    area().setCurrentPage(entered);
    EXPECT_EQ(log, QStringList({s("left.updateLastActiveTime"), s("entered.updateLastActiveTime"),
                                s("entered.load"), s("entered.notifyFocusIn"), s("entered.subPageActived")}));
    EXPECT_EQ(strip().currentIndex(), 1);
    EXPECT_EQ(changed.count(), 1);

    log.clear();
    area().setCurrentPage(entered);
    area().setCurrentPage(nullptr);
    FakePage stranger(s("stranger"), log);
    area().setCurrentPage(&stranger);
    EXPECT_EQ(log, QStringList());
    EXPECT_EQ(area().currentPage(), entered);
}

TEST_F(ShellPages, TheTabAndTheSubPageMakeTheirPageCurrent)
{
    FakePage* first = add("a");
    FakePage* second = add("b");
    second->subPage()->activate({}, true);
    EXPECT_EQ(area().currentPage(), second);
    strip().setCurrentIndex(0);
    EXPECT_EQ(area().currentPage(), first);
    NHelioTabAssistant assistant;
    assistant.activate(second->subPage());
    EXPECT_EQ(area().currentPage(), second);
    EXPECT_EQ(assistant.currentSubPage(), second->subPage());
    log.clear();
    first->newDocument({}, {}, NHelioProxyStrategy::Direct, nullptr, {});
    EXPECT_EQ(area().currentPage(), first);
    EXPECT_EQ(log.last(), s("a.load"));
}

struct WayToClose
{
    const char* name;
    void (*close)(ShellMainWindow& window, QTabBar& strip, FakePage& page);
};

void PrintTo(const WayToClose& way, std::ostream* out)
{
    *out << way.name;
}

class ShellPagesClosing : public ShellPages, public testing::WithParamInterface<WayToClose>
{
};

QMenu* openTabMenu(ShellMainWindow& window, QTabBar& strip)
{
    return static_cast<ShellTabBar*>(window.tabBar())
        ->popUpMenu(strip.tabRect(strip.currentIndex()).center());
}

const WayToClose waysToClose[] = {
    {"the page closes", [](ShellMainWindow&, QTabBar&, FakePage& page) { page.close(); }},
    {"the tab closes", [](ShellMainWindow& window, QTabBar&,
                          FakePage& page) { window.tabBar()->tabOf(page.subPage())->tryClose(); }},
    {"the tab's close button", [](ShellMainWindow&, QTabBar& strip,
                                  FakePage&) { Q_EMIT strip.tabCloseRequested(strip.currentIndex()); }},
    {"a middle click",
     [](ShellMainWindow&, QTabBar& strip, FakePage&) {
         QTest::mouseClick(&strip, Qt::MiddleButton, {}, strip.tabRect(strip.currentIndex()).center());
     }},
    {"the tab's menu",
     [](ShellMainWindow& window, QTabBar& strip, FakePage&) {
         openTabMenu(window, strip)->findChild<QAction*>(s("closeTab"))->trigger();
     }},
    {"the keyboard", [](ShellMainWindow& window, QTabBar&, FakePage&) {
         QTest::keyClick(&window, Qt::Key_W, Qt::ControlModifier);
     }}};

TEST_P(ShellPagesClosing, TakesTheTabAtOnceAndThePageLater)
{
    FakePage* before = add("before");
    QPointer<FakePage> page = add("closed");
    FakePage* after = add("after");
    area().setCurrentPage(page);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));

    page->refusesToClose = true;
    GetParam().close(*window, strip(), *page);
    runDeferredDeletes();
    ASSERT_TRUE(page);
    EXPECT_THAT(area().pages(), ElementsAre(before, page, after));

    page->refusesToClose = false;
    QSignalSpy removed(&application, &ShellApplication::pageRemoved);
    log.clear();
    GetParam().close(*window, strip(), *page);
    ASSERT_TRUE(page) << "deleted while its own calls were still under way";
    EXPECT_THAT(area().pages(), ElementsAre(before, after));
    EXPECT_EQ(tabTexts(), QStringList({s("before"), s("after")}));
    EXPECT_EQ(area().currentPage(), after);
    EXPECT_EQ(removed.count(), 1);
    runDeferredDeletes();
    EXPECT_FALSE(page);
    EXPECT_EQ(log.filter(s("closed.")),
              QStringList({s("closed.asked to close"), s("closed.destroyed in its window")}));
}

INSTANTIATE_TEST_SUITE_P(Ways, ShellPagesClosing, testing::ValuesIn(waysToClose));

TEST_F(ShellPages, ASubPageThatIsNotClosableKeepsItsTab)
{
    FakePage* page = add("pinned");
    page->subPage()->setClosable(false);
    EXPECT_FALSE(tabOf(page)->tryClose());
    EXPECT_THAT(area().pages(), ElementsAre(page));
}

TEST_F(ShellPages, APageThatClosesAnotherOneTakesItAlong)
{
    FakePage* first = add("a");
    FakePage* second = add("b");
    FakePage* stays = add("c");
    first->whenAskedToClose = [second] { second->close(); };
    first->close();
    EXPECT_THAT(area().pages(), ElementsAre(stays));
    EXPECT_EQ(tabTexts(), QStringList({s("c")}));
}

TEST_F(ShellPages, APageDeletedFromOutsideLeavesNothing)
{
    FakePage* first = add("a");
    FakePage* second = add("b");
    FakePage* third = add("c");
    area().setCurrentPage(second);
    delete third;
    EXPECT_THAT(area().pages(), ElementsAre(first, second));
    delete second;
    EXPECT_THAT(area().pages(), ElementsAre(first));
    EXPECT_EQ(area().currentPage(), first);
    EXPECT_EQ(tabTexts(), QStringList({s("a")}));
    delete first;
    EXPECT_EQ(area().currentPage(), nullptr);
    EXPECT_EQ(strip().count(), 0);
    EXPECT_TRUE(isShown("emptyState"));
}

TEST_F(ShellPages, ARemovedPageLivesOnAndCanMoveToAnotherWindow)
{
    add("stays");
    FakePage* page = add("moves");
    const NHelioSubPage* subPage = page->initialSubPage();
    area().removePage(page);
    EXPECT_EQ(page->parent(), nullptr);
    EXPECT_EQ(strip().count(), 1);
    page->close();
    runDeferredDeletes();

    ShellMainWindow* other = application.openMainWindow();
    other->area().addPage(page);
    EXPECT_EQ(other->area().currentPage(), page);
    EXPECT_EQ(page->initialSubPage(), subPage);
    area().addPage(page);
    EXPECT_TRUE(other->area().pages().isEmpty());
    EXPECT_EQ(application.findRelativeHelioMainWindow(page), window);
    EXPECT_EQ(log.count(s("moves.createSubPage")), 1);
}

TEST_F(ShellPages, MovedTabsMoveTheirPages)
{
    FakePage* first = add("a");
    FakePage* second = add("b");
    FakePage* third = add("c");
    strip().moveTab(0, 2);
    EXPECT_THAT(area().pages(), ElementsAre(second, third, first));
    EXPECT_EQ(area().currentPage(), first);
    tabOf(second)->tryClose();
    EXPECT_EQ(tabTexts(), QStringList({s("c"), s("a")}));
}

TEST_F(ShellPages, TheTabShowsTheSubPagesTitleAndIcon)
{
    FakePage* page = add("R&D\nplan");
    EXPECT_EQ(strip().tabText(0), s("R&&D plan"));
    EXPECT_TRUE(strip().tabIcon(0).isNull());
    page->subPage()->setWindowTitle(s("Sub"));
    EXPECT_EQ(strip().tabText(0), s("Sub"));
    QPixmap pixmap(4, 4);
    pixmap.fill(Qt::red);
    page->subPage()->icon = QIcon(pixmap);
    page->subPage()->refreshIcon();
    EXPECT_FALSE(strip().tabIcon(0).isNull());
}

TEST_F(ShellPages, TheTabMenuHoldsTheSubPagesActionsAndClosesTheOthers)
{
    add("a");
    FakePage* kept = add("b");
    FakePage* refusing = add("c");
    refusing->refusesToClose = true;
    area().setCurrentPage(kept);
    window->show();
    QMenu* menu = openTabMenu(*window, strip());
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->actions().first()->text(), s("of the sub page"));
    menu->findChild<QAction*>(s("closeOtherTabs"))->trigger();
    EXPECT_THAT(area().pages(), ElementsAre(kept, refusing));
}

} // namespace
