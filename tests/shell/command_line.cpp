#include "shell/config/CommandLine.h"
#include "shell/config/DataDirectory.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace {

using shell::CommandLine;
using testing::HasSubstr;

shell::Result<CommandLine> parse(QStringList arguments)
{
    arguments.prepend(QStringLiteral("skyleaf-shell"));
    return shell::parseCommandLine(arguments);
}

TEST(CommandLine, NothingAskedForRunsTheShell)
{
    const auto line = parse({});
    ASSERT_TRUE(line);
    EXPECT_EQ(line->wish, CommandLine::Wish::Run);
    EXPECT_FALSE(line->control);
    EXPECT_FALSE(line->text);
}

TEST(CommandLine, TakesItsOptionsInAnyOrderAndForm)
{
    const auto line = parse({QStringLiteral("https://docs.skyleaf.test/p/1"), QStringLiteral("--headless"),
                             QStringLiteral("--host=h.json"), QStringLiteral("--data-dir"),
                             QStringLiteral("d"), QStringLiteral("--control")});
    ASSERT_TRUE(line);
    EXPECT_EQ(line->hostFile, QStringLiteral("h.json"));
    EXPECT_EQ(line->dataDir, QStringLiteral("d"));
    EXPECT_TRUE(line->control);
    EXPECT_TRUE(line->headless);
    EXPECT_EQ(*line->text, QStringLiteral("https://docs.skyleaf.test/p/1"));

    const auto dashed = parse({QStringLiteral("--"), QStringLiteral("--control")});
    ASSERT_TRUE(dashed);
    EXPECT_FALSE(dashed->control);
    EXPECT_EQ(*dashed->text, QStringLiteral("--control"));
    EXPECT_EQ(*parse({QString()})->text, QString());
}

TEST(CommandLine, HelpAndVersion)
{
    EXPECT_EQ(parse({QStringLiteral("--help")})->wish, CommandLine::Wish::ShowHelp);
    EXPECT_EQ(parse({QStringLiteral("-v"), QStringLiteral("TEXT")})->wish, CommandLine::Wish::ShowVersion);
    for (const char* option : {"--host", "--data-dir", "--control", "--headless", "TEXT"})
        EXPECT_TRUE(shell::commandLineHelp().contains(QLatin1String(option))) << option;
}

struct Mistake
{
    QStringList arguments;
    const char* named;
};

class CommandLineMistakes : public testing::TestWithParam<Mistake>
{
};

TEST_P(CommandLineMistakes, AreNamed)
{
    const auto line = parse(GetParam().arguments);
    ASSERT_FALSE(line);
    EXPECT_THAT(line.error().text.toStdString(), HasSubstr(GetParam().named));
}

INSTANTIATE_TEST_SUITE_P(
    Table, CommandLineMistakes,
    testing::Values(Mistake{{QStringLiteral("--hosts"), QStringLiteral("x")}, "hosts"},
                    Mistake{{QStringLiteral("-x")}, "x"}, Mistake{{QStringLiteral("--host")}, "--host"},
                    Mistake{{QStringLiteral("--data-dir=")}, "--data-dir"},
                    Mistake{{QStringLiteral("--control=5")}, "--control"},
                    Mistake{{QStringLiteral("--host=a"), QStringLiteral("--host=b")}, "--host"},
                    Mistake{{QStringLiteral("one"), QStringLiteral("two")}, "\"one\" and \"two\""}));

TEST(DataDirectory, IsMadeWithItsParents)
{
    const QTemporaryDir dir;
    const QString wanted = dir.filePath(QStringLiteral("a/b"));
    const auto made = shell::prepareDataDirectory(wanted);
    ASSERT_TRUE(made);
    EXPECT_EQ(*made, wanted);
    EXPECT_TRUE(QDir(wanted).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
}

TEST(DataDirectory, AnUnusableOneIsNamed)
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("file"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const QStringList unusable = {path, path + QStringLiteral("/below"),
                                  QStringLiteral("/proc/nothing-can-be-made-here")};
    for (const QString& wanted : unusable) {
        const auto refused = shell::prepareDataDirectory(wanted);
        ASSERT_FALSE(refused) << wanted.toStdString();
        EXPECT_THAT(refused.error().text.toStdString(), HasSubstr(wanted.toStdString()));
    }
}

} // namespace
