#include "nheliostat/BrowserFactory.h"
#include "nheliostat/NHelioSubPage.h"
#include "nheliostat/framework/ShellApplication.h"
#include "nheliostat/framework/ShellBrowserPage.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellMainWindow.h"
#include "support/FakeBrowserWidget.h"

#include <gmock/gmock.h>

#include <QSignalSpy>
#include <QTabBar>

#include <memory>

using testing::ElementsAre;

namespace {

constexpr int chromium = 2;

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

class BrowserDelivery : public testing::Test
{
protected:
    BrowserDelivery()
    {
        nheliostat::host::setBrowserFactory([this](QWidget* parent, const QString& id, const QString& name) {
            browser = new FakeBrowserWidget(parent, id, name);
            return browser;
        });
    }
    ~BrowserDelivery() override { nheliostat::host::setBrowserFactory({}); }

    QPointer<FakeBrowserWidget> browser;
};

TEST_F(BrowserDelivery, ComesAtALaterTurnAsAChildOfTheParent)
{
    QWidget parent;
    NHelioBrowserCreator creator;
    QSignalSpy delivered(&creator, &NHelioBrowserCreator::createSucceeded);
    EXPECT_TRUE(CreateHelioBrowserWidget(&parent, &creator, chromium, s("id"), s("name"), 0));
    EXPECT_EQ(delivered.count(), 0);
    EXPECT_FALSE(creator.isCreateSucceeded());
    QCoreApplication::processEvents();
    ASSERT_EQ(delivered.count(), 1);
    EXPECT_TRUE(creator.isCreateSucceeded());
    EXPECT_EQ(browser->parentWidget(), &parent);
    EXPECT_EQ(browser->name, s("name"));
    delete browser;
    EXPECT_FALSE(creator.isCreateSucceeded());
}

TEST_F(BrowserDelivery, NothingComesWhenTheCreatorOrTheParentIsGone)
{
    auto parent = std::make_unique<QWidget>();
    auto creator = std::make_unique<NHelioBrowserCreator>();
    CreateHelioBrowserWidget(parent.get(), creator.get(), chromium, {}, {}, 0);
    creator.reset();
    QCoreApplication::processEvents();
    EXPECT_FALSE(browser);

    NHelioBrowserCreator waiting;
    QSignalSpy delivered(&waiting, &NHelioBrowserCreator::createSucceeded);
    CreateHelioBrowserWidget(parent.get(), &waiting, chromium, {}, {}, 0);
    parent.reset();
    QCoreApplication::processEvents();
    EXPECT_FALSE(browser);
    EXPECT_EQ(delivered.count(), 0);
}

TEST_F(BrowserDelivery, OtherTypesAndMissingPartsAreRefused)
{
    QWidget parent;
    NHelioBrowserCreator creator;
    EXPECT_FALSE(CreateHelioBrowserWidget(&parent, &creator, 1, {}, {}, 0));
    EXPECT_FALSE(CreateHelioBrowserWidget(nullptr, &creator, chromium, {}, {}, 0));
    EXPECT_FALSE(CreateHelioBrowserWidget(&parent, nullptr, chromium, {}, {}, 0));
    nheliostat::host::setBrowserFactory({});
    EXPECT_TRUE(CreateHelioBrowserWidget(&parent, &creator, chromium, {}, {}, 0));
    QCoreApplication::processEvents();
    EXPECT_FALSE(creator.isCreateSucceeded());
}

class BrowserPage : public BrowserDelivery
{
protected:
    QTabBar& strip() { return *window->findChild<QTabBar*>(s("tabs")); }

    ShellApplication application{ShellApplication::Setup{}};
    ShellMainWindow* window = application.openMainWindow();
};

TEST_F(BrowserPage, ShowsItsUrlWhenTheBrowserArrives)
{
    NHelioAppPage* page = window->area().addBrowserPage(s("https://example.test/a"));
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(page->widgetType(), 11);
    EXPECT_EQ(window->area().currentPage(), page);
    EXPECT_EQ(strip().tabText(0), s("example.test"));
    while (!browser || !browser->isCreated())
        QCoreApplication::processEvents();
    EXPECT_EQ(browser->webViewsMade, 1);
    EXPECT_THAT(browser->loads, ElementsAre(QUrl(s("https://example.test/a"))));
    browser->deliverTitle(s("A title"));
    EXPECT_EQ(strip().tabText(0), s("A title"));
    QPixmap pixmap(4, 4);
    pixmap.fill(Qt::red);
    browser->deliverFavicon({QIcon(pixmap)});
    EXPECT_FALSE(strip().tabIcon(0).isNull());
    const NHelioBrowserTabDelegate madeAnew(nullptr, browser); // as for a tab that is moved
    EXPECT_FALSE(madeAnew.getIcon(1).isNull());

    page->notify(s("no address"));
    page->notify(s("javascript:alert(1)"));
    page->notify(s("https://example.test/b"));
    EXPECT_EQ(browser->loads.size(), 2);
    EXPECT_EQ(browser->webViewsMade, 1);

    browser->deliverWindowDestroying();
    QCoreApplication::processEvents();
    EXPECT_TRUE(window->area().pages().isEmpty());
}

TEST_F(BrowserPage, ComesInTheWindowThatAskedForTheUrl)
{
    ShellMainWindow* second = application.openMainWindow();
    application.openUrl(s("https://example.test/1"), &second->area());
    application.openUrl(s("https://example.test/2"), nullptr);
    EXPECT_EQ(second->area().pages().size(), 1);
    EXPECT_EQ(window->area().pages().size(), 1);
}

} // namespace
