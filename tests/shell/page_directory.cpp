#include "shell/pages/PageDirectory.h"

#include "nheliostat/NHelioPage.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QSignalSpy>

#include <memory>

namespace {

using shell::PageDirectory;

class FakePage final : public NHelioAppPage
{
public:
    int widgetType() const override { return 1; }
    QString pageTitle() const override { return {}; }
    NHelioSubPage* createSubPage(NHelioSubPages*) override { return nullptr; }
    void notify(const QString&) override {}
    void load() override { released = false; }
    void releasePage() override { released = true; }
    bool isReleased() const override { return released; }

    bool released = false;
};

class PageDirectoryTest : public testing::Test
{
protected:
    std::vector<std::string> happened()
    {
        std::vector<std::string> texts;
        for (const QList<QVariant>& each : m_spy)
            texts.push_back(std::to_string(each.at(0).toInt()) + ' ' + each.at(1).toString().toStdString());
        return texts;
    }

    PageDirectory m_pages;
    QSignalSpy m_spy{&m_pages, &PageDirectory::happened};
};

TEST_F(PageDirectoryTest, IdsAreNeverUsedAgain)
{
    auto first = std::make_unique<FakePage>();
    m_pages.onPageAdded(first.get());
    EXPECT_EQ(m_pages.find(1), first.get());
    QWidget inner(first.get());
    EXPECT_EQ(m_pages.idOfPageAround(&inner), 1);
    inner.setParent(nullptr);
    EXPECT_EQ(m_pages.idOfPageAround(&inner), 0);
    first.reset();
    EXPECT_EQ(m_pages.find(1), nullptr);

    FakePage second;
    m_pages.onPageAdded(&second);
    EXPECT_EQ(m_pages.idOf(&second), 2);
    EXPECT_THAT(happened(), testing::ElementsAre("1 created", "1 closed", "2 created"));
}

TEST_F(PageDirectoryTest, APageThatMovesIsNotClosed)
{
    FakePage page;
    m_pages.onPageAdded(&page);
    m_pages.onPageRemoved(&page);
    EXPECT_EQ(m_pages.find(1), nullptr) << "not in a window";
    m_pages.onPageAdded(&page);
    QCoreApplication::processEvents();
    EXPECT_EQ(m_pages.find(1), &page);
    EXPECT_THAT(happened(), testing::ElementsAre("1 created"));
}

TEST_F(PageDirectoryTest, APageThatIsTakenOutIsClosedOnceThoughItLives)
{
    auto page = std::make_unique<FakePage>();
    m_pages.onPageAdded(page.get());
    m_pages.onPageRemoved(page.get());
    QCoreApplication::processEvents();
    page.reset();
    QCoreApplication::processEvents();
    EXPECT_THAT(happened(), testing::ElementsAre("1 created", "1 closed"));
}

TEST_F(PageDirectoryTest, LoadedUntilReleased)
{
    FakePage page;
    m_pages.onPageAdded(&page);
    EXPECT_FALSE(m_pages.isLoaded(&page));
    m_pages.markLoadAsked(&page);
    EXPECT_TRUE(m_pages.isLoaded(&page));
    page.releasePage();
    EXPECT_FALSE(m_pages.isLoaded(&page));
    page.load();
    EXPECT_TRUE(m_pages.isLoaded(&page)) << "the window loads a released page that it shows again";
}

} // namespace
