#include "shell/pages/ProcessPage.h"
#include "nheliostat/NHelioPluginWidgetFactory.h"
#include "nheliostat/NHelioSubPage.h"
#include "shell/pages/ProcessPageItem.h"

#include <gmock/gmock.h>

#include <QLabel>
#include <QSignalSpy>

#include <memory>

namespace {

using shell::ProcessPage;

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

QString shownTexts(const QWidget& page)
{
    QStringList texts;
    for (const QLabel* label : page.findChildren<QLabel*>())
        texts.append(label->text());
    return texts.join(u'|');
}

TEST(ProcessPages, ShowWhatTheyWereTold)
{
    const shell::ProcessPageItem item(ProcessPage::flowType);
    const std::unique_ptr<QWidget> widget(
        NHelioPluginWidgetFactory::findItem(ProcessPage::flowType)->createWidget(nullptr));
    auto* page = qobject_cast<ProcessPage*>(widget.get());
    ASSERT_TRUE(page);
    EXPECT_EQ(page->widgetType(), ProcessPage::flowType);
    page->setInitialSubPage(page->createSubPage(page->subPages()));
    QSignalSpy activated(page->initialSubPage(), &NHelioSubPage::activationRequested);
    const auto open = [page](const QStringList& args) {
        return page->openLocalFiles(args, {}, NHelioProxyStrategy::Direct, nullptr, {}, true);
    };
    EXPECT_TRUE(open({s("71"), s("g5")}));
    EXPECT_EQ(activated.count(), 1);
    EXPECT_TRUE(page->initialSubPage()->windowTitle().contains(s("71")));
    EXPECT_THAT(shownTexts(*page).toStdString(),
                testing::AllOf(testing::HasSubstr("71"), testing::HasSubstr("g5")));
    for (const QStringList& args : {QStringList(), {s(" "), s("g6")}})
        EXPECT_FALSE(open(args));
    for (const char* text : {"", "&", "a&b&c", "&g7&", "&a&b&c"})
        page->notify(s(text));
    EXPECT_TRUE(page->pageTitle().contains(s("71"))) << "malformed texts change nothing";

    page->notify(s("&g8&44"));
    EXPECT_THAT(shownTexts(*page).toStdString(),
                testing::AllOf(testing::HasSubstr("g8"), testing::HasSubstr("44"),
                               testing::Not(testing::HasSubstr("71"))));
    EXPECT_EQ(page->initialSubPage()->windowTitle(), page->pageTitle());
}

} // namespace
