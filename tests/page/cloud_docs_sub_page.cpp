#include "page/NxCloudDocsSubPage.h"

#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/NHelioTabMenu.h"
#include "nheliostat/framework/ShellCloudSvrProxy.h"
#include "nheliostat/framework/ShellTabBar.h"
#include "page/NHelioCloudDocsPage.h"
#include "page/NxCloudDocsTabDelegate.h"
#include "support/LogRecorder.h"
#include "support/ShellFixture.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

#include <memory>

namespace {

using testing::ElementsAre;

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

class CloudDocsSubPage : public ShellFixture
{
protected:
    /** A page in the window, with its browser, told and asked to load a URL unless that is empty. */
    void open(const QString& url)
    {
        start();
        page = new NHelioCloudDocsPage(nullptr, true, false);
        window->centralArea()->addPage(page);
        turn();
        if (!url.isEmpty()) {
            page->notify(url);
            page->load();
        }
        subPage = qobject_cast<NxCloudDocsSubPage*>(page->initialSubPage());
    }

    QStringList menuActions()
    {
        const std::unique_ptr<QMenu> menu(window->tabs().makeMenu(subPage));
        QStringList names;
        for (const QAction* action : menu->actions())
            names << (action->isSeparator() ? s("-") : action->objectName());
        return names;
    }

    FakeBrowserWidget* browser() const { return page->findChild<FakeBrowserWidget*>(); }

    LogRecorder log;
    NHelioCloudDocsPage* page = nullptr;
    NxCloudDocsSubPage* subPage = nullptr;
};

TEST_F(CloudDocsSubPage, TheMenuOffersTheDocumentOnlyWhileThereIsOne)
{
    open(s("https://docs.test/p/7?suffix=docx"));
    EXPECT_THAT(menuActions(),
                ElementsAre(s("refresh"), s("copyLink"), s("pin2quickaccess"), s("-"), s("fixTab"),
                            s("detachTab"), s("closeTab"), s("closeOtherTabs"), s("-"), s("-")));
    subPage->onRefreshAction();
    EXPECT_EQ(browser()->reloads, 1);

    page->releasePage();
    browser()->deliverAddress({});
    EXPECT_FALSE(menuActions().contains(s("refresh")));
    EXPECT_TRUE(
        log.lines().join(u'\n').contains(s("NxCloudDocsSubPage::doAttachContextMenuActions: empty url")));
    subPage->onPinToQuickAccess();
    EXPECT_TRUE(log.lines().join(u'\n').contains(s("NxCloudDocsSubPage::onPinToQuickAccess: empty url")));
}

struct Pin
{
    const char* fileIdProperty;
    const char* url;
    const char* logged;
    const char* command;
};

class CloudDocsSubPagePins : public CloudDocsSubPage, public testing::WithParamInterface<Pin>
{
};

TEST_P(CloudDocsSubPagePins, ByACommandOfTheCloudService)
{
    open(s(GetParam().url));
    page->setProperty("File_ID", s(GetParam().fileIdProperty));
    page->setProperty("fileName", s("Größe.docx"));
    QSignalSpy commands(&shell->cloudService(), &ShellCloudSvrProxy::commandReceived);
    subPage->onPinToQuickAccess();
    ASSERT_EQ(commands.size(), 1);
    EXPECT_EQ(commands.first().first().toString(), s(GetParam().command));
    EXPECT_TRUE(log.lines().join(u'\n').contains(s(GetParam().logged)))
        << qPrintable(log.lines().join(u'\n'));
    const auto events = host->dataCollection().events();
    EXPECT_EQ(events.back().fields.value(s("item")), s("pin2quickaccess"));
}

const Pin pins[] = {
    {"", "https://docs.test/p/7?a=1&traceId=t", "with url https://docs.test/p/7, fileId:7",
     "pinToQuickAccess&activate&tab_menu&cloudFile&>_<&7>_<>_<R3LDtsOfZQ=="},
    {"9", "https://docs.test/p/7", "with url https://docs.test/p/7, fileId:9",
     "pinToQuickAccess&activate&tab_menu&cloudFile&>_<&9>_<>_<R3LDtsOfZQ=="},
    {"", "https://docs.test/p/abc", "with url https://docs.test/p/abc, fileId:",
     "pinToQuickAccess&activate&tab_menu&cloudFile&>_<&>_<>_<R3LDtsOfZQ=="},
};

INSTANTIATE_TEST_SUITE_P(Documents, CloudDocsSubPagePins, testing::ValuesIn(pins));

TEST_F(CloudDocsSubPage, TheRecoverItemHoldsWhatBringsTheDocumentBack)
{
    open(s("https://docs.test/p/7?suffix=docx&startTime=5"));
    page->setProperty("File_ID", s("7"));
    page->setProperty("suffix", s("docx"));
    page->setToolBarVisible(true);
    NHelioWorkAreaRecoverItem item;
    ASSERT_TRUE(subPage->getWorkAreaRecoverItem(&item));
    const QString url = item.params.value(s("url")).toString();
    EXPECT_TRUE(url.startsWith(s("https://docs.test/p/7?suffix=docx")));
    EXPECT_FALSE(url.contains(s("startTime")) || url.contains(s("traceId")));
    EXPECT_TRUE(log.lines().join(u'\n').contains(s("getWorkAreaRecoverItem ") + url));
    EXPECT_EQ(item.params,
              (QVariantMap{{s("url"), url}, {s("toolBarVisible"), true}, {s("fileId"), s("7")}}));
    EXPECT_EQ(item.suffix, s("docx"));
    EXPECT_EQ(item.pageType, 1);
    browser()->deliverAddress(s("About:Blank"));
    EXPECT_FALSE(subPage->getWorkAreaRecoverItem(&item));
}

TEST_F(CloudDocsSubPage, TheIconIsThatOfTheTypeElseOfTheSiteElseTransparent)
{
    open({});
    const NxCloudDocsTabDelegate delegate(page, browser(), page);
    const QImage none = delegate.getIcon(2).pixmap(16, 16).toImage();
    EXPECT_EQ(delegate.getIcon(2).availableSizes().first(), QSize(32, 32));
    EXPECT_EQ(none.pixelColor(8, 8).alpha(), 0);
    QPixmap red(16, 16);
    red.fill(Qt::red);
    browser()->deliverFavicon({QIcon(red)});
    EXPECT_EQ(delegate.getIcon(1).pixmap(16, 16).toImage().pixelColor(8, 8), QColor(Qt::red));
    page->setProperty("suffix", s("xlsx"));
    EXPECT_EQ(delegate.getIcon(1).cacheKey(), helioFileIcon(s("XLSX")).cacheKey());
}

} // namespace
