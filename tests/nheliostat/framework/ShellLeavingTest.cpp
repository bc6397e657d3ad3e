#include "FakePage.h"
#include "nheliostat/framework/ShellApplication.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellMainWindow.h"
#include "nheliostat/framework/ShellTab.h"
#include "nheliostat/framework/ShellTabBar.h"
#include "support/FakeBrowserWidget.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QMessageBox>
#include <QPushButton>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Answer = FakeBrowserWidget::Answer;

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

void turn()
{
    for (int i = 0; i < 3; ++i) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

/** Pages that show documents, and the question that they may lead to. */
class ShellLeaving : public testing::Test
{
protected:
    struct Document
    {
        QPointer<FakePage> page;
        QPointer<FakeBrowserWidget> browser;
    };

    Document add(const char* name)
    {
        auto* page = new FakePage(s(name), log);
        auto* browser = new FakeBrowserWidget(page);
        browser->guardsDocument = true;
        area().addPage(page);
        return {page, browser};
    }
    ShellCentralArea& area() { return window->area(); }
    ShellTab* tabOf(const Document& document)
    {
        return static_cast<ShellTab*>(window->tabBar()->tabOf(document.page->subPage()));
    }
    QMessageBox* question()
    {
        turn();
        return window->findChild<QMessageBox*>(s("leaveQuestion"));
    }
    void answer(QMessageBox::StandardButton button)
    {
        ASSERT_TRUE(question());
        question()->button(button)->click();
        turn();
    }

    QStringList log;
    ShellApplication application{ShellApplication::Setup{}};
    QPointer<ShellMainWindow> window = application.openMainWindow();
};

TEST_F(ShellLeaving, APageClosesOnceItsDocumentAgreedAndIsClosed)
{
    const Document document = add("a");
    bool closed = false;
    EXPECT_FALSE(tabOf(document)->tryClose());
    EXPECT_FALSE(document.page->close()) << "asked already";
    ASSERT_EQ(document.browser->questions.size(), 1U);
    area().whenDecided(document.page, [&](bool closes) { closed = closes; });
    document.browser->deliverAnswer(Answer::Agrees);
    turn();
    EXPECT_THAT(area().pages(), ElementsAre(document.page.data())) << "its last handlers still run";
    EXPECT_THAT(document.browser->closedRegardless, ElementsAre(false));
    document.browser->deliverClosed(Answer::Agrees);
    turn();
    EXPECT_THAT(area().pages(), IsEmpty());
    EXPECT_TRUE(closed);
    EXPECT_FALSE(question());
}

TEST_F(ShellLeaving, WhereWordsWouldBeLostTheUserDecides)
{
    struct Case
    {
        Answer answer;
        QString text;
        bool isClosedByBrowser;
    };
    for (const Case& each :
         {Case{Answer::Objects, s("The changes in \"a\" are not saved. Close it all the same?"), true},
          Case{Answer::Silent, s("This page does not answer. Close it all the same?"), false}}) {
        const Document document = add("a");
        tabOf(document)->tryClose();
        document.browser->deliverAnswer(each.answer);
        ASSERT_TRUE(question());
        EXPECT_EQ(question()->text(), each.text);
        answer(QMessageBox::Cancel);
        EXPECT_THAT(area().pages(), ElementsAre(document.page.data()));
        EXPECT_THAT(document.browser->closedRegardless, IsEmpty());

        tabOf(document)->tryClose();
        document.browser->deliverAnswer(each.answer);
        answer(QMessageBox::Discard);
        // One that does not answer cannot be asked to close either: its page is gone by now.
        ASSERT_EQ(document.browser.isNull(), !each.isClosedByBrowser);
        if (document.browser) {
            EXPECT_THAT(document.browser->closedRegardless, ElementsAre(true));
            document.browser->deliverClosed(Answer::Agrees);
            turn();
        }
        EXPECT_THAT(area().pages(), IsEmpty());
    }
}

TEST_F(ShellLeaving, WordsTypedWhileItClosesAreAskedAboutAgain)
{
    const Document document = add("a");
    tabOf(document)->tryClose();
    document.browser->deliverAnswer(Answer::Agrees);
    turn();
    document.browser->deliverClosed(Answer::Objects);
    answer(QMessageBox::Cancel);
    EXPECT_THAT(area().pages(), ElementsAre(document.page.data()));
}

TEST_F(ShellLeaving, AWindowAsksAllItsDocumentsAndTheUserOnce)
{
    const Document first = add("first");
    const Document second = add("second");
    const Document third = add("third");
    window->show();
    for (const bool leaves : {false, true}) {
        EXPECT_FALSE(window->close());
        first.browser->deliverAnswer(Answer::Objects);
        second.browser->deliverAnswer(Answer::Agrees);
        EXPECT_FALSE(question()) << "asked before all have answered";
        third.browser->deliverAnswer(Answer::Silent);
        ASSERT_TRUE(question());
        EXPECT_THAT(question()->informativeText().split(u'\n'),
                    ElementsAre(s("• first"), s("• third (does not answer)")));
        answer(leaves ? QMessageBox::Discard : QMessageBox::Cancel);
        EXPECT_EQ(area().pages().size(), 3);
        EXPECT_EQ(second.browser->closedRegardless.isEmpty(), !leaves) << "Cancel keeps everything";
    }
    EXPECT_THAT(second.browser->closedRegardless, ElementsAre(false));
    first.browser->deliverClosed(Answer::Agrees);
    second.browser->deliverClosed(Answer::Agrees);
    turn();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(window);
}

TEST_F(ShellLeaving, OtherTabsCloseTogether)
{
    const Document kept = add("kept");
    const Document other = add("other");
    const Document another = add("another");
    window->tabs().closeOtherTabs(tabOf(kept));
    EXPECT_TRUE(kept.browser->questions.empty());
    other.browser->deliverAnswer(Answer::Objects);
    another.browser->deliverAnswer(Answer::Objects);
    answer(QMessageBox::Cancel);
    EXPECT_EQ(area().pages().size(), 3);
    EXPECT_FALSE(question()) << "asked twice";
}

TEST_F(ShellLeaving, ARestartAsksAndLeavesThePageInItsPlace)
{
    const Document document = add("a");
    tabOf(document)->restart();
    document.browser->deliverAnswer(Answer::Objects);
    answer(QMessageBox::Cancel);
    EXPECT_FALSE(log.contains(s("a.releasePage")));
    tabOf(document)->restart();
    document.browser->deliverAnswer(Answer::Objects);
    answer(QMessageBox::Discard);
    EXPECT_THAT(log.mid(log.size() - 2), ElementsAre(s("a.releasePage"), s("a.load")));
    EXPECT_THAT(document.browser->closedRegardless, IsEmpty());
    EXPECT_THAT(area().pages(), ElementsAre(document.page.data()));
}

TEST_F(ShellLeaving, APageThatIsBeingAskedIsNotReleased)
{
    const Document document = add("asked");
    add("shown");
    area().setCurrentPage(area().pages().last());
    document.page->discardable = true;
    tabOf(document)->tryClose();
    area().releaseInactivePages();
    EXPECT_FALSE(document.page->released);
}

TEST_F(ShellLeaving, ThePageOrTheWindowMayGoWhileTheUserIsAsked)
{
    const Document gone = add("gone");
    const Document stays = add("stays");
    tabOf(gone)->tryClose();
    tabOf(stays)->tryClose();
    gone.browser->deliverAnswer(Answer::Objects);
    ASSERT_TRUE(question());
    delete gone.page;
    answer(QMessageBox::Discard);
    EXPECT_THAT(area().pages(), ElementsAre(stays.page.data()));
    stays.browser->deliverAnswer(Answer::Objects);
    ASSERT_TRUE(question());
    delete window;
    turn();
}

TEST_F(ShellLeaving, TheEndOfTheShellAsksOrTells)
{
    const Document document = add("a");
    QVector<bool> outcomes;
    const auto note = [&outcomes](bool all) { outcomes.append(all); };
    tabOf(document)->tryClose();
    document.browser->deliverAnswer(Answer::Objects);
    ASSERT_TRUE(question());
    application.leaveAllPages(LeaveRequest::Manner::Ask, note);
    EXPECT_FALSE(question()) << "the wider wish takes the place of the narrower one";
    document.browser->deliverAnswer(Answer::Objects);
    answer(QMessageBox::Cancel);
    EXPECT_THAT(outcomes, ElementsAre(false));

    application.leaveAllPages(LeaveRequest::Manner::Tell, note);
    document.browser->deliverAnswer(Answer::Objects);
    EXPECT_FALSE(question());
    EXPECT_THAT(document.browser->closedRegardless, ElementsAre(true));
    document.browser->deliverClosed(Answer::Agrees);
    turn();
    EXPECT_THAT(outcomes, ElementsAre(false, true));
}

TEST_F(ShellLeaving, AnEmptyShellMayEndAtOnce)
{
    bool all = false;
    application.leaveAllPages(LeaveRequest::Manner::Ask, [&](bool each) { all = each; });
    EXPECT_TRUE(all);
}

} // namespace
