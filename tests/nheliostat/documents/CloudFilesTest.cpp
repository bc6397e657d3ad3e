#include "nheliostat/NHelioSubPage.h"
#include "nheliostat/documents/LocalDocumentPage.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellPageMoves.h"
#include "nheliostat/framework/ShellTabBar.h"
#include "support/HttpStub.h"
#include "support/ShellFixture.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QPlainTextEdit>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

class CloudFiles : public ShellFixture
{
protected:
    void SetUp() override
    {
        ShellFixture::SetUp();
        services.domains.insert(s("quill_api"), server.origin());
        server.answer("/office-config/7",
                      {200, R"({"file_info":{"name":"Plan.docx"},"ssr":{"html":"<p>x</p>"}})", {}});
        start();
        NHelioUserInfo user;
        user.cacheRoot = directory.path();
        shell->setUser(user);
    }
    LocalDocumentPage* download(const QString& fileId, const QVariantMap& more = {})
    {
        QVariantMap parameters{{s("fileid"), fileId}};
        for (auto entry = more.begin(); entry != more.end(); ++entry)
            parameters.insert(entry.key(), entry.value());
        shell->cloudFilesMgr()->downloadAndOpen(parameters, window);
        return qobject_cast<LocalDocumentPage*>(window->area().currentPage());
    }
    static bool shows(const LocalDocumentPage* page)
    {
        return waitUntil([page] { return page->state() == LocalDocumentPage::State::Shown; });
    }
    NHelioAppPage* otherPage() { return window->area().addPage(LocalDocumentPage::type, {}, {}); }
    static void runDeferredDeletes()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        turn();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    static QMap<QString, QString> named(const QString& fileId)
    {
        return {{s("fileId"), fileId}, {s("historyid"), QString()}};
    }

    HttpStub server;
};

TEST_F(CloudFiles, AFileIsShownOnceUnlessAskedForAgainOnPurpose)
{
    otherPage();
    LocalDocumentPage* page = download(s("7"));
    ASSERT_TRUE(page && shows(page));
    EXPECT_EQ(page->pageTitle(), s("Plan.docx"));
    EXPECT_TRUE(page->path().startsWith(directory.path()));
    EXPECT_EQ(page->findSubPage(named(s("7"))), page->initialSubPage());
    EXPECT_EQ(page->findSubPage(named(s("8"))), nullptr);
    window->area().stepCurrentPage(1);
    EXPECT_EQ(download(s("7")), page);
    EXPECT_EQ(window->area().pages().size(), 2);
    EXPECT_NE(download(s("7"), {{s("isSaveAs"), true}}), page);
    EXPECT_EQ(window->area().pages().size(), 3);

    const QString copy = page->path();
    EXPECT_TRUE(page->closeSubPage(page->initialSubPage()));
    runDeferredDeletes();
    EXPECT_FALSE(QFile::exists(copy)) << "the copy goes with its page";
    EXPECT_EQ(window->area().pages().size(), 2);
}

TEST_F(CloudFiles, WhatCannotBeOpenedSaysSoAndIsTriedAgain)
{
    LocalDocumentPage* page = nullptr;
    for (const char* id : {"", "-1", "../7", "6"}) {
        page = download(s(id), {{s("fileName"), s("/x/Name.txt")}});
        ASSERT_TRUE(page) << id;
        EXPECT_TRUE(waitUntil([&] { return page->state() == LocalDocumentPage::State::Failed; })) << id;
        EXPECT_EQ(page->pageTitle(), s("Name.txt"));
        EXPECT_EQ(page->findSubPage(named(s(id))), nullptr) << id;
    }
    const int pages = window->area().pages().size();
    server.answer("/office-config/6",
                  {200, R"({"file_info":{"name":"Six.docx"},"ssr":{"html":"<p>x</p>"}})", {}});
    EXPECT_EQ(download(s("6")), page);
    EXPECT_TRUE(shows(page));
    EXPECT_EQ(window->area().pages().size(), pages);
}

TEST_F(CloudFiles, ADocumentTakesThePlaceOfThePageItIsOpenedFrom)
{
    otherPage();
    const QPointer<NHelioAppPage> left = otherPage();
    otherPage();
    NHelioSubPage* leftSubPage = left->initialSubPage();
    const auto* inside = new QObject(left);
    window->area().removePage(left);
    LocalDocumentPage* page = download(s("7"), {{s("isSwitch"), true}});
    EXPECT_EQ(window->area().pageAt(1), page);
    EXPECT_EQ(shell->findRelativeHelioMainWindow(inside), window);

    // The collaboration goes on: the document closes and the page is back where it was.
    EXPECT_TRUE(page->closeSubPage(page->initialSubPage()));
    NHelioTab* tab = window->tabBar()->tabOf(leftSubPage);
    ASSERT_TRUE(tab);
    tab->reAttachSubPage(nullptr);
    EXPECT_EQ(left->parent(), nullptr) << "not allowed";
    tab->setAllowReAttachSubwindow(true);
    tab->reAttachSubPage(nullptr);
    tab->setAllowReAttachSubwindow(false);
    runDeferredDeletes();
    ASSERT_TRUE(left);
    EXPECT_EQ(window->area().pageAt(1), left);
    EXPECT_EQ(window->area().currentPage(), left);

    // It does not: the page goes with the document.
    window->area().removePage(left);
    download(s("7"))->close();
    runDeferredDeletes();
    EXPECT_FALSE(left);
    EXPECT_EQ(window->area().pages().size(), 2);
}

TEST_F(CloudFiles, APageKeptAsideGoesWithTheWindowOrTheShell)
{
    for (const bool closesWindow : {true, false}) {
        const QPointer<NHelioAppPage> left = otherPage();
        window->area().removePage(left);
        download(s("7"));
        if (closesWindow) {
            window->close();
            runDeferredDeletes();
            window = shell->openMainWindow();
        } else {
            shell.reset();
        }
        EXPECT_FALSE(left) << closesWindow;
    }
}

TEST_F(CloudFiles, APageMovesToAWindowOfItsOwnAndBack)
{
    NHelioAppPage* first = otherPage();
    NHelioAppPage* page = otherPage();
    NHelioAppPage* last = otherPage();
    const QPointer<ShellMainWindow> own = shell->pageMoves().detach(page);
    ASSERT_TRUE(own && own != window);
    EXPECT_EQ(shell->findRelativeHelioMainWindow(page), own);
    EXPECT_THAT(window->area().pages(), testing::ElementsAre(first, last));
    EXPECT_EQ(own->area().currentPage(), page);
    EXPECT_TRUE(shell->pageMoves().reAttach(page));
    runDeferredDeletes();
    EXPECT_FALSE(own) << "an empty window stays";
    EXPECT_THAT(window->area().pages(), testing::ElementsAre(first, page, last));
    EXPECT_EQ(window->area().currentPage(), page);
    EXPECT_FALSE(shell->pageMoves().reAttach(page)) << "it is at home";
}

TEST_F(CloudFiles, FilesOfThisMachineAreShown)
{
    const QString path = directory.filePath(s("a.json"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("{\"a\":[1]}") > 0 && file.flush());
    auto* page = static_cast<LocalDocumentPage*>(otherPage());
    const auto open = [page](const QStringList& args) {
        return page->openFiles(args, {}, NHelioProxyStrategy::Direct, nullptr, {});
    };
    EXPECT_TRUE(open({QUrl::fromLocalFile(path).toString()}));
    EXPECT_EQ(page->findChild<QPlainTextEdit*>(s("documentText"))->toPlainText(),
              s("{\n    \"a\": [\n        1\n    ]\n}\n"));
    EXPECT_FALSE(open({directory.path()}));
    EXPECT_FALSE(open({}));
    page->close();
    runDeferredDeletes();
    EXPECT_TRUE(QFile::exists(path));
}

} // namespace
