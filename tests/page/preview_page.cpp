#include "page/NHelioQuillPreviewPage.h"

#include "base/NReadOnce.h"
#include "support/LogRecorder.h"
#include "support/ShellFixture.h"

#include <QDir>
#include <QFile>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

class PreviewPage : public ShellFixture
{
protected:
    void SetUp() override
    {
        ShellFixture::SetUp();
        nreadonce::resetForTest();
    }

    NHelioQuillPreviewPage* addPage()
    {
        auto* page = new NHelioQuillPreviewPage(nullptr, true, false);
        page->setToolBarVisible(true);
        window->centralArea()->addPage(page);
        turn();
        return page;
    }

    static QString command(const char* url, const QString& rest)
    {
        return s("previewCloudDoc&") + QString::fromLatin1(QByteArray(url).toBase64()) + rest;
    }

    /** What "notifyResult" says after the text; empty when nothing. */
    static QString result(NHelioQuillPreviewPage* page, const QString& text)
    {
        page->setProperty("notifyResult", QVariant());
        page->notify(text);
        return page->property("notifyResult").toString();
    }
};

TEST_F(PreviewPage, SaysWhetherATextWasTaken)
{
    start();
    NHelioQuillPreviewPage* page = addPage();
    EXPECT_EQ(page->widgetType(), 48);
    const LogRecorder log;
    EXPECT_EQ(result(page, s("Suffix:docx:x")), s("true"));
    EXPECT_EQ(page->property("suffix").toString(), s("docx"));
    EXPECT_EQ(result(page, s("suffix:")), s("true"));
    EXPECT_EQ(page->property("suffix").toString(), s("docx"));
    EXPECT_EQ(result(page, s("suffix")), s("false"));
    EXPECT_EQ(log.lines(),
              (QStringList{s("error [skyleaf] set suffix failed, suffix is empty!"),
                           s("error [skyleaf] NHelioQuillPreviewPage::notify : notify file suffix failed, "
                             "cmd = suffix")}));
    for (const char* text : {"previewCloudDoc", "PREVIEWCLOUDDOC&", "previewCloudDocs&x&&docx&7"})
        EXPECT_EQ(result(page, s(text)), s("false")) << text;
    EXPECT_EQ(result(page, command("https://docs.test/p/x", s("&&docx&-1"))), s("false"));
    EXPECT_EQ(result(page, s("https://docs.test/p/3")), s("true"));

    NHelioQuillPreviewPage alone(nullptr, false, false);
    EXPECT_EQ(result(&alone, command("https://docs.test/p/7", s("&&docx&7"))), QString());
    EXPECT_EQ(result(&alone, s("previewCloudDoc")), s("false"));
}

TEST_F(PreviewPage, ShowsTheDocumentOnce)
{
    start();
    window->show();
    NHelioQuillPreviewPage* page = addPage();
    const QString text =
        command("https://docs.test/p/7?pcEnter=mail&x=1", s("&&docx&7&filePath&/home/Plan.docx"));
    EXPECT_EQ(result(page, text), s("true"));
    EXPECT_EQ(page->property("File_ID").toString(), s("7"));
    EXPECT_EQ(page->property("suffix").toString(), s("docx"));
    EXPECT_EQ(page->property("fileName").toString(), s("Plan.docx"));
    EXPECT_EQ(page->pageTitle(), s("Plan"));
    auto* browser = page->findChild<FakeBrowserWidget*>();
    turn();
    ASSERT_EQ(browser->loads.size(), 1);
    EXPECT_EQ(browser->loads.first().path(), s("/p/7"));
    browser->deliverLoadFinished(true);
    EXPECT_EQ(page->property("File_SrcFrom").toString(), s("mail"));

    // Another page finds the document open, unless the source differs or a new page is wanted.
    NHelioQuillPreviewPage* other = addPage();
    EXPECT_EQ(result(other, text), s("true"));
    EXPECT_EQ(other->notifyUrl(), QString());
    EXPECT_EQ(window->centralArea()->currentPage(), page);
    EXPECT_EQ(result(page, text + s("&newpage")), s("false"));
    EXPECT_EQ(result(other, text + s("&newpage")), s("true"));
    EXPECT_EQ(window->centralArea()->currentPage(), other);
    NHelioQuillPreviewPage* third = addPage();
    EXPECT_EQ(result(third, command("https://docs.test/p/7?pcEnter=chat", s("&&docx&7&createSubPage&no"))),
              s("true"));
    EXPECT_EQ(window->centralArea()->currentPage(), other);
    turn();
    EXPECT_EQ(third->findChild<FakeBrowserWidget*>()->loads.size(), 1);
}

TEST_F(PreviewPage, PutsASplitPathTogetherWhereTheFeatureIsOn)
{
    const QString path = directory.filePath(s("a&b.docx"));
    QFile file(directory.filePath(s("a")) + s("/b.docx"));
    QDir(directory.path()).mkdir(s("a"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    for (const bool isOn : {false, true}) {
        runtime.features.insert(s("CloudDocsPathRecoveryOnOpen"), isOn);
        start();
        NHelioQuillPreviewPage* page = addPage();
        result(page, command("https://docs.test/p/7", s("&&docx&filePath&") + path));
        EXPECT_EQ(page->property("fileName").toString(), isOn ? s("b.docx") : s("a"));
        shell.reset();
        host.reset();
    }
}

} // namespace
