#include "page/NHelioCloudDocsPage.h"

#include "bridge/CloudFileDialog.h"
#include "nheliostat/framework/ShellApplication.h"
#include "nrt/NrtHost.h"
#include "zeolite/ZeoliteHost.h"

#include <gtest/gtest.h>

#include <QLocale>
#include <QTemporaryDir>

namespace {

QString dialogTitle()
{
    return cloudfiledialog::properties(cloudfiledialog::Kind::DownloadDirectory, {})
        .value(QStringLiteral("Title"));
}

TEST(Translations, ComeWithTheFirstPageAndGoWithTheLast)
{
    const QTemporaryDir directory;
    nrt::host::Setup runtime;
    runtime.dataDir = directory.path();
    nrt::host::configure(runtime);
    const ZeoliteHost services({});
    QLocale::setDefault(QLocale(QLocale::Chinese, QLocale::China));
    ShellApplication::Setup setup;
    setup.translationsDir = QStringLiteral(TRANSLATIONS_DIR);
    const ShellApplication application(setup);

    EXPECT_EQ(dialogTitle(), QStringLiteral("choose download path"));
    auto first = std::make_unique<NHelioCloudDocsPage>(nullptr, false, false);
    auto second = std::make_unique<NHelioCloudDocsPage>(nullptr, false, false);
    EXPECT_EQ(second->pageTitle(), QString::fromUtf8("VLT 文档"));
    first.reset();
    EXPECT_EQ(dialogTitle(), QString::fromUtf8("选择下载路径"));
    second.reset();
    EXPECT_EQ(dialogTitle(), QStringLiteral("choose download path"));

    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
    first = std::make_unique<NHelioCloudDocsPage>(nullptr, false, false);
    EXPECT_EQ(first->pageTitle(), QStringLiteral("VLT Docs"));
    first.reset();
    QLocale::setDefault(QLocale::system());
}

} // namespace
