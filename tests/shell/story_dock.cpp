#include "shell/story/StoryDock.h"

#include "nheliostat/gateway/RequestGateway.h"
#include "shell/pages/PageDirectory.h"
#include "shell/story/StoryRecorder.h"
#include "support/ShellFixture.h"

#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include <thread>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

class StoryDockTest : public ShellFixture
{
protected:
    void SetUp() override
    {
        ShellFixture::SetUp();
        start();
        recorder = std::make_unique<shell::StoryRecorder>(host->dataCollection(), pages);
        dock = new shell::StoryDock(*window, *ShellFixture::shell, *recorder, pages);
    }
    void TearDown() override
    {
        ShellFixture::shell.reset();
        recorder.reset();
        ShellFixture::TearDown();
    }

    void postLoad(const QString& trace)
    {
        host->dataCollection().postGeneralEvent(
            s("docs_cloud_open"),
            NDcFields{{s("step"), s("load")},
                      {s("trace_id"), trace},
                      {s("notify_url"), s("https://docs.test/p/") + trace}},
            0, 0, 1, true);
    }

    template <typename Widget>
    Widget* find(const char* name)
    {
        return dock->findChild<Widget*>(s(name));
    }

    shell::PageDirectory pages;
    std::unique_ptr<shell::StoryRecorder> recorder;
    shell::StoryDock* dock = nullptr;
};

TEST_F(StoryDockTest, ListsOpensAndCountsOnlyWhileInSight)
{
    window->show();
    postLoad(s("1"));
    turn();
    EXPECT_EQ(find<QListWidget>("storyList")->count(), 0) << "nobody looks";

    dock->toggleViewAction()->trigger();
    ASSERT_EQ(find<QListWidget>("storyList")->count(), 2);
    EXPECT_TRUE(find<QListWidget>("storyList")->item(1)->text().contains(s("Document 1")));
    EXPECT_FALSE(find<QPushButton>("storySaveSvg")->isEnabled()) << "the current page has no open";
    find<QListWidget>("storyList")->setCurrentRow(1);
    EXPECT_TRUE(find<QPushButton>("storySaveSvg")->isEnabled());
    EXPECT_TRUE(find<QLabel>("storyCounters")->text().startsWith(s("Pages: 0 open, 0 released")));
}

TEST_F(StoryDockTest, KeepsABoundedNumberOfNotesFromAnyThread)
{
    std::thread other([this] {
        for (std::size_t i = 0; i < shell::StoryRecorder::mostNotes; ++i)
            postLoad(s("other"));
    });
    for (std::size_t i = 0; i < shell::StoryRecorder::mostNotes; ++i)
        postLoad(s("own"));
    other.join();
    EXPECT_EQ(recorder->stories().size(), static_cast<int>(shell::StoryRecorder::mostNotes));

    GatewayRequestRecord record;
    record.by = GatewayRequestRecord::AnsweredBy::Refused;
    record.status = 407;
    recorder->onRequestFinished(nullptr, record);
    record.status = 403;
    recorder->onRequestFinished(nullptr, record);
    EXPECT_EQ(recorder->counts().networkRequests, 1) << "asking for credentials is no request of its own";
}

} // namespace
