#include <gmock/gmock.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace {

using testing::HasSubstr;

struct Ended
{
    int status = -1;
    std::string output;
    std::string errors;
};

Ended run(const QStringList& arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(name));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(SHELL_PROGRAM), arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString()};
}

TEST(ShellProgram, HelpAndVersionGoToStandardOutput)
{
    const Ended help = run({QStringLiteral("--help")});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, HasSubstr("--data-dir DIR"));
    const Ended version = run({QStringLiteral("--version")});
    EXPECT_EQ(version.status, 0);
    EXPECT_THAT(version.output, testing::MatchesRegex("skyleaf-shell [0-9.]+\n"));
}

TEST(ShellProgram, MistakesAreNamedOnStandardErrorWithStatusTwo)
{
    const QTemporaryDir dir;
    const QString hostPath = dir.filePath(QStringLiteral("host.json"));
    QFile host(hostPath);
    ASSERT_TRUE(host.open(QIODevice::WriteOnly));
    host.write(R"({"configcentre": {}})");
    host.close();

    const std::vector<std::pair<QStringList, const char*>> table = {
        {{QStringLiteral("--frobnicate")}, "frobnicate"},
        {{QStringLiteral("one"), QStringLiteral("two")}, "\"two\""},
        {{QStringLiteral("--host"), hostPath}, "host file: unknown member \"configcentre\""},
        {{QStringLiteral("--control"), QStringLiteral("--host"), QStringLiteral("/nowhere/host.json")},
         "/nowhere/host.json"},
        {{QStringLiteral("--data-dir"), hostPath}, "host.json is not a directory"}};
    for (const auto& [arguments, named] : table) {
        const Ended ended = run(arguments);
        EXPECT_EQ(ended.status, 2) << named;
        EXPECT_THAT(ended.errors, HasSubstr(named));
        EXPECT_EQ(ended.output, "") << named;
    }
}

TEST(ShellProgram, SaysThatThereIsNoDisplay)
{
    const QTemporaryDir dir;
    const Ended ended = run({QStringLiteral("--data-dir"), dir.path()});
    EXPECT_EQ(ended.status, 1);
    EXPECT_THAT(ended.errors, HasSubstr("no display"));
}

} // namespace
