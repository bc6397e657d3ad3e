#include "PackageService.h"
#include "SocketQueues.h"
#include "vltcloudsvr/client/CloudServiceClient.h"
#include "vltcloudsvr/common/ServicePlace.h"

#include <gmock/gmock.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "tava/TavaIpc_types.h"

#include <csignal>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace testfiles;
using namespace vlt::cloudsvr;

constexpr int patienceMs = 20'000;

/** What a call answered. */
struct Answered
{
    bool isThere = false;
    bool success = false;
    CallResult result;
};

class ServiceClient : public testing::Test
{
protected:
    void SetUp() override { qRegisterMetaType<QMap<QString, QString>>("QMap<QString,QString>"); }
    void TearDown() override
    {
        for (const QString& dir : {dataDir, longDir})
            end(dir, SIGTERM);
    }

    std::unique_ptr<CloudServiceClient> client(const QString& dir)
    {
        return std::make_unique<CloudServiceClient>(ClientSetup{
            s(SERVICE_PROGRAM), dir, {s("--idle-exit-seconds"), s("1"), s("--download-spread-ms"), s("0")}});
    }

    static pid_t pidOf(const QString& dir)
    {
        return placeOf(dir).dataDir.isEmpty() || !isServed(placeOf(dir))
                   ? 0
                   : pid_t(read(placeOf(dir).lockPath).value_or(QByteArray()).trimmed().toInt());
    }
    /** Ends the service of the directory, if there is one, and waits for it. */
    static void end(const QString& dir, int signal)
    {
        const pid_t pid = pidOf(dir);
        if (pid > 0)
            ::kill(pid, signal);
        waitFor([&] { return !isServed(placeOf(dir)); });
    }

    template <typename Condition>
    static void waitFor(Condition condition)
    {
        QElapsedTimer time;
        time.start();
        while (!condition() && !time.hasExpired(patienceMs))
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 10);
        EXPECT_TRUE(condition());
    }

    /** Starts a call; the answer arrives in the result. */
    std::shared_ptr<Answered> begin(CloudServiceClient& target, const QString& function, const Values& values)
    {
        auto answered = std::make_shared<Answered>();
        target.call(caller(), function, values, [answered](bool success, const CallResult& result) {
            EXPECT_FALSE(answered->isThere) << "one answer";
            *answered = {true, success, result};
        });
        return answered;
    }
    Answered call(CloudServiceClient& target, QLatin1String function, const Values& values)
    {
        const auto answered = begin(target, function, values);
        waitFor([&] { return answered->isThere; });
        return *answered;
    }
    Answered create(CloudServiceClient& target, const char* file = "f1")
    {
        return call(target, names::createDOPRootData, {{s("fileId"), s(file)}});
    }
    Caller caller() const
    {
        return {
            s("anna"), directory.filePath(s("anna")), service.url(), {{s("docs.test"), service.address()}}};
    }

    QTemporaryDir directory;
    const QString dataDir = directory.filePath(s("data"));
    const QString longDir = directory.filePath(QString(100, QLatin1Char('d')));
    PackageService service;
};

TEST_F(ServiceClient, StartsOneServiceForAllWhoShareADirectory)
{
    const auto first = client(dataDir);
    const auto second = client(dataDir);
    QSignalSpy starts(first.get(), &CloudServiceClient::serviceStarted);
    EXPECT_FALSE(first->isRunning());
    // Both at once: whoever loses the race uses the other's service.
    const auto one = begin(*first, names::createDOPRootData, {{s("fileId"), s("f1")}});
    const auto two = begin(*second, names::createDOPRootData, {{s("fileId"), s("f1")}});
    waitFor([&] { return one->isThere && two->isThere; });
    EXPECT_TRUE(one->success && two->success);
    EXPECT_EQ(one->result.values, two->result.values);
    EXPECT_TRUE(first->isRunning() && second->isRunning());
    EXPECT_LE(starts.count(), 1);

    struct stat info = {};
    ASSERT_EQ(::lstat(QFile::encodeName(placeOf(dataDir).socketPath).constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0600U);
    EXPECT_EQ(QProcess::execute(s(SERVICE_PROGRAM), {s("--data-dir"), dataDir}), 0)
        << "another one ends at once";
    EXPECT_TRUE(create(*first).success);
}

TEST_F(ServiceClient, FailsWhatIsUnderWayWhenTheServiceDiesAndStartsItAgain)
{
    const auto shell = client(dataDir);
    QSignalSpy lost(shell.get(), &CloudServiceClient::serviceLost);
    QSignalSpy starts(shell.get(), &CloudServiceClient::serviceStarted);
    const QString localId = create(*shell).result.values.value(s("localId"));
    EXPECT_EQ(localId.size(), 32);

    const pid_t pid = pidOf(dataDir);
    ASSERT_GT(pid, 0);
    ::kill(pid, SIGSTOP);
    const auto pending = begin(*shell, names::updateDOPFileInfo,
                               {{s("localId"), localId}, {s("data"), QString(3'000'000, QLatin1Char('x'))}});
    waitFor(&isSendingMuch);
    end(dataDir, SIGKILL);
    waitFor([&] { return pending->isThere && lost.count() > 0; });
    EXPECT_FALSE(pending->success);

    const Answered again = create(*shell);
    EXPECT_TRUE(again.success);
    EXPECT_EQ(again.result.values.value(s("localId")), localId) << "the records are kept";
    EXPECT_NE(pidOf(dataDir), pid);
    EXPECT_EQ(starts.count(), 2);
}

TEST_F(ServiceClient, KeepsWhatItHasAnsweredWhenItIsKilledInWriting)
{
    const auto shell = client(dataDir);
    const QString localId = create(*shell).result.values.value(s("localId"));
    const QString filler(200'000, QLatin1Char('w'));
    constexpr int calls = 30;
    int written = 0;
    int answered = 0;
    for (int round = 0; round < 5; ++round) {
        const pid_t pid = pidOf(dataDir);
        ASSERT_GT(pid, 0);
        int ended = 0;
        for (int i = 0; i < calls; ++i) {
            const QString data = s(R"({"n": %1, "filler": "%2"})").arg(++written).arg(filler);
            shell->call(caller(), names::updateDOPFileInfo, {{s("localId"), localId}, {s("data"), data}},
                        [&, n = written](bool success, const CallResult&) {
                            ++ended;
                            answered = success ? n : answered;
                        });
        }
        const int killAfter = answered + 1 + round % 4;
        waitFor([&] { return answered >= killAfter; });
        end(dataDir, SIGKILL);
        // At most the one under way fails; those that waited behind it go to the next service.
        waitFor([&] { return ended == calls; });
        const Answered found = call(*shell, names::getDOPFileInfo, {{s("localId"), localId}});
        ASSERT_TRUE(found.success);
        ASSERT_EQ(found.result.code, ResultCode::Ok);
        const QJsonObject kept =
            QJsonDocument::fromJson(found.result.values.value(s("data")).toUtf8()).object();
        EXPECT_GE(kept.value(s("n")).toInt(), answered) << "round " << round;
        EXPECT_EQ(kept.value(s("filler")).toString(), filler);
    }
}

TEST_F(ServiceClient, LeavesTheServiceNothingOfItsOwnFiles)
{
    // Open in the client without a word about child processes, as libraries leave them.
    int ends[2] = {-1, -1};
    ASSERT_EQ(::pipe(ends), 0);
    const auto shell = client(dataDir);
    EXPECT_TRUE(create(*shell).success);
    const QString directoryOfFiles = s("/proc/%1/fd").arg(pidOf(dataDir));
    const QStringList files = QDir(directoryOfFiles).entryList(QDir::AllEntries | QDir::System);
    EXPECT_GT(files.size(), 5);
    QByteArray pipe(64, '\0');
    const QByteArray own = "/proc/self/fd/" + QByteArray::number(ends[1]);
    pipe.resize(int(::readlink(own.constData(), pipe.data(), size_t(pipe.size()))));
    for (const QString& file : files) {
        QByteArray target(4096, '\0');
        const QByteArray link = QFile::encodeName(directoryOfFiles + QLatin1Char('/') + file);
        target.resize(int(qMax<ssize_t>(0, ::readlink(link.constData(), target.data(), 4096))));
        EXPECT_NE(target, pipe) << qPrintable(file);
        if (file == s("0") || file == s("1") || file == s("2")) {
            EXPECT_EQ(target, "/dev/null") << qPrintable(file);
        }
    }
    // The pipe ends with this process's own copy of it.
    ::close(ends[1]);
    char byte = 0;
    EXPECT_EQ(::read(ends[0], &byte, 1), 0);
    ::close(ends[0]);
}

TEST_F(ServiceClient, FailsAllCallsWhenTheServiceCannotBeStarted)
{
    CloudServiceClient none({});
    EXPECT_FALSE(create(none).success);
    EXPECT_FALSE(none.start({}, false) || none.isRunning());
    CloudServiceClient missing({s("/no/such/program"), dataDir, {}});
    EXPECT_FALSE(missing.start({}, true));
    EXPECT_FALSE(create(missing).success);
    // A program that is not the service, and calls that wait for it together.
    CloudServiceClient wrong({s("/bin/true"), dataDir, {}});
    const auto one = begin(wrong, names::getDOPFileInfo, {});
    const auto two = begin(wrong, names::getDOPFileInfo, {});
    waitFor([&] { return one->isThere && two->isThere; });
    EXPECT_FALSE(one->success || two->success);
}

TEST_F(ServiceClient, CanBeEndedWhileACallIsUnderWay)
{
    auto shell = client(dataDir);
    EXPECT_TRUE(shell->start({}, true));
    EXPECT_TRUE(create(*shell).success);
    const pid_t pid = pidOf(dataDir);
    ::kill(pid, SIGSTOP);
    const auto pending = begin(*shell, names::getDOPFileInfo, {{s("fileId"), s("f1")}});
    shell.reset();
    ::kill(pid, SIGCONT);
    QCoreApplication::processEvents();
    EXPECT_FALSE(pending->isThere);
    // Nobody is left: the service follows.
    waitFor([&] { return !isServed(placeOf(dataDir)); });
    EXPECT_FALSE(QFileInfo::exists(placeOf(dataDir).socketPath));
}

TEST_F(ServiceClient, ReachesAServiceWhoseDirectoryIsTooLongForASocket)
{
    const auto shell = client(longDir);
    EXPECT_TRUE(create(*shell).success);
    EXPECT_FALSE(placeOf(longDir).socketPath.startsWith(longDir));
}

TEST_F(ServiceClient, AnswersCodesAndLongTexts)
{
    const auto shell = client(dataDir);
    const QString localId = create(*shell).result.values.value(s("localId"));
    const Answered unknown = call(*shell, QLatin1String("noSuchFunction"), {});
    EXPECT_TRUE(unknown.success);
    EXPECT_EQ(unknown.result.code, ResultCode::UnsupportedFunction);
    // More in a connection than one message may hold.
    const QString text(3'000'000, QLatin1Char('x'));
    for (int i = 0; i < 40; ++i) {
        const Answered updated = call(*shell, names::updateDOPFileInfo,
                                      {{s("localId"), localId}, {s("data"), s("{\"t\": \"%1\"}").arg(text)}});
        ASSERT_TRUE(updated.success) << i;
        ASSERT_EQ(updated.result.code, ResultCode::Ok) << i;
    }
    EXPECT_FALSE(
        call(*shell, names::updateDOPFileInfo, {{s("data"), QString(17'000'000, QLatin1Char('x'))}}).success);
    EXPECT_TRUE(create(*shell).success);
}

TEST_F(ServiceClient, IsToldOfAPluginThatWasDownloadedAlsoByAnother)
{
    writeZip(directory.filePath(s("p.zip")), {{"version", "1.5"}});
    service.offer(s("quillword"), s("1.5"), *read(directory.filePath(s("p.zip"))));
    const auto first = client(dataDir);
    const auto second = client(dataDir);
    EXPECT_TRUE(create(*second).success);
    QSignalSpy firstEvents(first.get(), &CloudServiceClient::eventHappened);
    QSignalSpy secondEvents(second.get(), &CloudServiceClient::eventHappened);

    vlt::tava::TavaIpcArg argument;
    argument.method = "downloadDOPPluginOnRandomTime";
    argument.argMap = {{"pluginName", "quillword"}};
    int code = -1;
    first->tavaIpcCall(caller(), argument, [&](bool, const CallResult& result) { code = int(result.code); });
    waitFor([&] { return firstEvents.count() == 1 && secondEvents.count() == 1; });
    EXPECT_EQ(code, 0);
    const auto values = firstEvents.at(0).at(1).value<QMap<QString, QString>>();
    EXPECT_EQ(values, (Values{{s("pluginName"), s("quillword")},
                              {s("version"), s("1.5")},
                              {s("path"), placeOf(dataDir).pluginsDir() + s("/quillword/1.5")}}));
    argument.nameSpace = "other";
    first->tavaIpcCall(caller(), argument, [&](bool, const CallResult& result) { code = int(result.code); });
    waitFor([&] { return code == 6; });
    argument.nameSpace.clear();
    argument.argMap["pluginName"] = "../x";
    first->tavaIpcCall(caller(), argument, [&](bool, const CallResult& result) { code = int(result.code); });
    waitFor([&] { return code == 1; });
}

TEST(ServiceProgram, NamesMistakesWithStatusTwo)
{
    const std::vector<std::pair<QStringList, int>> table = {
        {{s("--help")}, 0},
        {{s("--version")}, 0},
        {{}, 2},
        {{s("--frobnicate")}, 2},
        {{s("--data-dir"), s("/tmp"), s("more")}, 2},
        {{s("--data-dir"), s("/tmp"), s("--idle-exit-seconds"), s("-1")}, 2},
        {{s("--data-dir"), s("/dev/null/x")}, 1}};
    for (const auto& [arguments, status] : table) {
        QProcess process;
        process.start(s(SERVICE_PROGRAM), arguments);
        ASSERT_TRUE(process.waitForFinished());
        EXPECT_EQ(process.exitCode(), status) << qPrintable(arguments.join(QLatin1Char(' ')));
        EXPECT_EQ(process.readAllStandardError().isEmpty(), status == 0);
    }
}

} // namespace
