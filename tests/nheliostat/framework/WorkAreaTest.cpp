#include "FactoryItems.h"
#include "FakePage.h"

#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellMainWindow.h"
#include "nheliostat/framework/WorkAreaStore.h"
#include "support/LogRecorder.h"
#include "support/OddFiles.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

WorkAreaRecord record(const QString& url)
{
    NHelioWorkAreaRecoverItem item;
    item.pageType = FakePage::type;
    item.title = s("Title");
    item.suffix = s("docx");
    item.params = {{s("url"), url}, {s("toolBarVisible"), true}};
    WorkAreaRecord::Window window;
    window.items = {item};
    window.current = 0;
    return {{window}};
}

TEST(WorkArea, OnlyWhatAnEndedShellLeftIsOffered)
{
    const QTemporaryDir directory;
    {
        WorkAreaStore killed(directory.path()); // ends without `clear`
        killed.write(record(s("https://one/")));
    }
    WorkAreaStore running(directory.path());
    running.write(record(s("https://two/")));
    running.waitUntilWritten();

    WorkAreaStore started(directory.path());
    ASSERT_EQ(started.abandoned().count(), 1);
    const NHelioWorkAreaRecoverItem item = started.abandoned().windows.first().items.first();
    EXPECT_EQ(item.params, (QVariantMap{{s("url"), s("https://one/")}, {s("toolBarVisible"), true}}));
    EXPECT_EQ(item.suffix, s("docx"));
    EXPECT_EQ(WorkAreaStore(directory.path()).abandoned().count(), 0) << "another shell offers it already";

    started.forgetAbandoned();
    running.clear();
    started.clear();
    EXPECT_TRUE(QDir(directory.path()).entryList({s("*.json")}).isEmpty());
}

TEST(WorkArea, WhatIsNoRecordIsLeftOut)
{
    for (const OddFile& odd : oddFiles) {
        const QTemporaryDir directory;
        {
            WorkAreaStore killed(directory.path());
            killed.write(record(s("https://one/")));
        }
        ASSERT_TRUE(putOddFile(odd, directory.filePath(s("odd.json"))));
        ASSERT_TRUE(putOddFile(odd, directory.filePath(s("other.json.lock"))));
        EXPECT_EQ(WorkAreaStore(directory.path()).abandoned().count(), 1) << odd.name;
    }
}

TEST(WorkArea, APageThatWaitsKeepsItsItemInWhateverWindowAndLoadsWhenShown)
{
    QStringList log;
    const FakeFactoryItem item(FakePage::type,
                               [&log](QWidget* parent) { return new FakePage(s("p"), log, parent); });
    ShellMainWindow window;
    ShellMainWindow other;
    const NHelioWorkAreaRecoverItem left = record(s("https://one/")).windows.first().items.first();
    NHelioAppPage* page = window.area().addWaitingPage(left);
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(window.workArea().itemOf(page)->params, left.params);
    EXPECT_FALSE(log.contains(s("p.load")));
    other.area().addPage(page);
    EXPECT_EQ(log.count(s("p.load")), 1) << "it is the current page of that window";
    other.workArea().updateItem(page->initialSubPage()->workAreaItemId());
    EXPECT_EQ(other.workArea().itemOf(page)->params, QVariantMap()) << "the page answers for itself now";
}

} // namespace
