#include "nheliostat/framework/ShellCloudSvrProxy.h"
#include "support/LogRecorder.h"
#include "vltcloudsvr/common/ServicePlace.h"

#include <gmock/gmock.h>

#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include "tava/TavaIpc_types.h"

#include <csignal>
#include <functional>
#include <memory>

namespace {

constexpr int patienceMs = 20'000;

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

/** Keeps what its slot was told. */
class Receiver : public QObject
{
    Q_OBJECT
public:
    struct Told
    {
        bool success;
        QString requestId;
        TavaIpcResult result;
    };
    std::vector<Told> told;
    std::function<void()> onTold = [] {};

public Q_SLOTS:
    void onResult(bool success, const QString& requestId, const TavaIpcResult& result)
    {
        told.push_back({success, requestId, result});
        onTold();
    }
};

class CloudSvrProxy : public testing::Test
{
protected:
    void SetUp() override
    {
        user.userId = s("anna");
        user.loggedIn = true;
        user.localDataDir = directory.filePath(s("packages"));
        start(s(SERVICE_PROGRAM));
    }
    void start(const QString& program)
    {
        proxy = std::make_unique<ShellCloudSvrProxy>(
            user, ShellCloudService{{program, directory.path(), {s("--idle-exit-seconds"), s("1")}}, {}, {}});
    }
    void TearDown() override
    {
        proxy.reset();
        end(SIGTERM);
    }
    void end(int signal) const
    {
        const vlt::cloudsvr::ServicePlace place = vlt::cloudsvr::placeOf(directory.path());
        QFile lock(place.lockPath);
        if (vlt::cloudsvr::isServed(place) && lock.open(QIODevice::ReadOnly))
            ::kill(lock.readAll().trimmed().toInt(), signal);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !vlt::cloudsvr::isServed(place); }, patienceMs));
    }

    /** The answer to a call that was just begun. */
    Receiver::Told answer(const QString& requestId)
    {
        EXPECT_TRUE(receiver.told.empty()) << "nothing is answered before the call returns";
        EXPECT_TRUE(QTest::qWaitFor([&] { return !receiver.told.empty(); }, patienceMs));
        const Receiver::Told told = receiver.told.empty() ? Receiver::Told{} : receiver.told.front();
        receiver.told.clear();
        EXPECT_EQ(told.requestId, requestId);
        EXPECT_EQ(requestId.size(), 32);
        return told;
    }
    QString create()
    {
        return answer(proxy->createDOPRootData(s("f1"), &receiver, "onResult"))
            .result.values.value(s("localId"));
    }

    QTemporaryDir directory;
    NHelioUserInfo user;
    Receiver receiver;
    std::unique_ptr<ShellCloudSvrProxy> proxy;
};

TEST_F(CloudSvrProxy, CallsTheServiceForTheUserThatIsSignedInThen)
{
    const QString localId = create();
    const QString changes = s(R"({"title": "T"})");
    EXPECT_EQ(
        answer(proxy->updateDOPFileInfo(localId, changes, s("docs"), &receiver, "onResult")).result.code, 0);
    // The user changes right after the call.
    const QString asked = proxy->getDOPFileInfo({}, s("f1"), &receiver, "onResult");
    proxy->setUser({});
    const Receiver::Told found = answer(asked);
    EXPECT_TRUE(found.success);
    EXPECT_EQ(found.result.code, 0);
    const QByteArray data = found.result.values.value(s("data")).toUtf8();
    EXPECT_EQ(QJsonDocument::fromJson(data).object().value(s("title")), s("T"));
    EXPECT_EQ(answer(proxy->getDOPFileInfo({}, s("f1"), &receiver, "onResult")).result.code, 2);

    NHelioUserInfo signedOut = user;
    signedOut.loggedIn = false;
    proxy->setUser(signedOut);
    const QString nobodys = create();
    EXPECT_NE(nobodys, localId);
    EXPECT_EQ(answer(proxy->removeDOPRootData(localId, &receiver, "onResult")).result.code, 2);
    EXPECT_EQ(answer(proxy->removeDOPRootData(nobodys, &receiver, "onResult")).result.code, 0);
}

TEST_F(CloudSvrProxy, UnpacksInThePackageOnly)
{
    const QString localId = create();
    const QString root = user.localDataDir + s("/quillfile/") + localId;
    const auto unzip = [&](const char* compress, const QString& source, const QString& destination) {
        return answer(proxy->unzipDOPFile(localId, s(compress), s("true"), source, destination, &receiver,
                                          "onResult"))
            .result.code;
    };
    QFile file(root + s("/sync/a"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(unzip("true", root + s("/sync"), root + s("/o.zip")), 0);
    EXPECT_EQ(unzip("false", root + s("/o.zip"), root + s("/cache/x")), 0);
    EXPECT_TRUE(QFile::exists(root + s("/cache/x/a")));
    EXPECT_FALSE(QFile::exists(root + s("/o.zip")));
    EXPECT_EQ(unzip("true", root + s("/sync"), directory.filePath(s("o.zip"))), 1);
}

TEST_F(CloudSvrProxy, ReadsTheRecordOfAGenericCallAtOnceAndRefusesOtherArguments)
{
    auto argument = std::make_unique<vlt::tava::TavaIpcArg>();
    argument->method = "noSuchMethod";
    const QString asked = proxy->invokeCloudFunction(
        s("tavaIpcCall"), QGenericArgument("TavaIpcArg", argument.get()), &receiver, "onResult");
    argument->method = "downloadDOPPluginOnRandomTime";
    argument->argMap["pluginName"] = "quillword";
    EXPECT_EQ(answer(asked).result.code, 6);
    const QGenericArgument good("TavaIpcArg", argument.get());
    EXPECT_EQ(answer(proxy->invokeCloudFunction(s("tavaIpcCall"), good, &receiver, "onResult")).result.code,
              0);
    for (const QGenericArgument& passed : {QGenericArgument("QString", argument.get()), QGenericArgument()}) {
        const Receiver::Told told =
            answer(proxy->invokeCloudFunction(s("tavaIpcCall"), passed, &receiver, "onResult"));
        EXPECT_TRUE(told.success);
        EXPECT_EQ(told.result.code, 6);
    }
    EXPECT_EQ(proxy->invokeCloudFunction(s("tavaIpcCall"), good, nullptr, "").size(), 32);
}

TEST_F(CloudSvrProxy, TellsOnlyReceiversThatAreStillThere)
{
    auto gone = std::make_unique<Receiver>();
    bool isTold = false;
    gone->onTold = [&] { isTold = true; };
    proxy->createDOPRootData(s("f1"), gone.get(), "onResult");
    gone.reset();
    create(); // answered after it
    EXPECT_FALSE(isTold);
    // A receiver may end the proxy's owner's page, and itself, when it is told.
    auto* ending = new Receiver;
    ending->onTold = [&] { isTold = true, ending->deleteLater(); };
    proxy->createDOPRootData(s("f1"), ending, "onResult");
    EXPECT_TRUE(QTest::qWaitFor([&] { return isTold; }, patienceMs));
}

TEST_F(CloudSvrProxy, LogsStartsAndDeathsAndFailsWithoutAService)
{
    const LogRecorder log;
    create();
    end(SIGKILL);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            return log.lines().contains(
                s("warning [shell] vltcloudsvr ended; the next call starts it again"));
        },
        patienceMs));
    create();
    EXPECT_THAT(log.lines().filter(s("vltcloudsvr started")),
                testing::ElementsAre(s("info [shell] vltcloudsvr started"),
                                     s("info [shell] vltcloudsvr started again")));
    EXPECT_TRUE(proxy->isServiceRunning());

    for (const QString& program : {QString(), s("/no/such/program")}) {
        proxy.reset();
        end(SIGTERM);
        start(program);
        EXPECT_FALSE(answer(proxy->createDOPRootData(s("f1"), &receiver, "onResult")).success);
        EXPECT_FALSE(proxy->isServiceRunning());
    }
}

} // namespace

#include "CloudSvrProxyTest.moc"
