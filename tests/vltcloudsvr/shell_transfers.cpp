#include "DriveProcess.h"
#include "nheliostat/framework/ShellCloudSvrProxy.h"
#include "vltcloudsvr/common/ServicePlace.h"

#include <gmock/gmock.h>

#include <QSignalSpy>
#include <QTest>

#include <csignal>

namespace {

using namespace testfiles;
using vlt::cloudsvr::TransferDirection;
using vlt::cloudsvr::TransferList;

constexpr int patienceMs = 30'000;

/** Keeps what its slots were told. */
class Receiver : public QObject
{
    Q_OBJECT
public:
    int count = 0;
    bool success = false;
    QString requestId;
    stringMap values;
    QList<QByteArray> tasks;

public Q_SLOTS:
    void onMap(bool isDone, const QString& id, const stringMap& map) { keep(isDone, id, map); }
    void onResponse(bool isDone, const QString& id, const NRpcResponse& reply)
    {
        keep(isDone, id, reply.values);
    }
    void onDownloads(bool isDone, const QString& id, const DownloadCloudFilesResult& result)
    {
        keep(isDone, id, {});
        tasks = result.taskIds;
    }

private:
    void keep(bool isDone, const QString& id, const stringMap& map)
    {
        ++count;
        success = isDone;
        requestId = id;
        values = map;
    }
};

class ShellTransfers : public testing::Test
{
protected:
    ShellTransfers()
    {
        QDir(directory.path()).mkdir(s("target"));
        user.userId = s("anna");
        user.cookies = s("vlt_sid=test;");
        user.loggedIn = true;
        proxy = std::make_unique<ShellCloudSvrProxy>(
            user, ShellCloudService{{s(SERVICE_PROGRAM), dataDir, {s("--idle-exit-seconds"), s("1")}},
                                    s("http://docs.test"),
                                    drive.resolve()});
    }
    ~ShellTransfers() override
    {
        proxy.reset();
        end(SIGTERM);
    }
    void end(int signal)
    {
        const auto place = vlt::cloudsvr::placeOf(dataDir);
        if (isServed(place))
            ::kill(read(place.lockPath)->trimmed().toInt(), signal);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !isServed(place); }, patienceMs));
    }

    void answer(const QString& requestId)
    {
        const int before = receiver.count;
        EXPECT_TRUE(QTest::qWaitFor([&] { return receiver.count > before; }, patienceMs));
        EXPECT_EQ(receiver.requestId, requestId);
        EXPECT_EQ(requestId.size(), 32);
    }
    stringMap ask(const QString& function, const QString& text)
    {
        answer(proxy->invokeCloudFunction(function, Q_ARG(QStringList, QStringList{text}), &receiver,
                                          "onResponse"));
        EXPECT_TRUE(receiver.success);
        return receiver.values;
    }
    TransferList list(TransferDirection direction)
    {
        TransferList answered;
        bool isThere = false;
        proxy->listTransfers(direction, 0, 10, [&](bool success, const TransferList& page) {
            EXPECT_TRUE(success);
            isThere = true;
            answered = page;
        });
        EXPECT_TRUE(QTest::qWaitFor([&] { return isThere; }, patienceMs));
        return answered;
    }

    DriveProcess drive;
    QTemporaryDir directory;
    const QString dataDir = directory.filePath(s("data"));
    NHelioUserInfo user;
    Receiver receiver;
    std::unique_ptr<ShellCloudSvrProxy> proxy;
};

TEST_F(ShellTransfers, AnswerEachSlotWithItsType)
{
    const QString path = directory.filePath(s("a.txt"));
    write(path, "hello");
    answer(proxy->batchUploadFileListToAnyExistedPath(s("7"), s("0"), {path}, s("0"), true, &receiver,
                                                      "onMap", {}));
    EXPECT_TRUE(receiver.success);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return ask(s("getBatchUploadFileListState"), path).value(path).startsWith(s("ok/")); },
        patienceMs));
    QDir(directory.path()).mkdir(s("folder"));
    answer(proxy->folderUpload(s("7"), s("0"), directory.filePath(s("folder")), &receiver, "onMap", {}));
    EXPECT_TRUE(receiver.values.value(s("taskid")).startsWith(u't'));
    answer(proxy->folderUpload(s("7"), s("0"), s("/no/such/folder"), &receiver, "onMap", {}));
    EXPECT_FALSE(receiver.success);

    answer(proxy->downloadCloudFiles({drive.idOf(s("a.txt"))}, directory.filePath(s("target")), {}, &receiver,
                                     "onDownloads"));
    ASSERT_EQ(receiver.tasks.size(), 1);
    const QString task = QString::fromUtf8(receiver.tasks[0]);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            return ask(s("getBatchDownloadCloudFilesState"), task)
                .value(s("jsonConten"))
                .startsWith(s("finished|"));
        },
        patienceMs));
    EXPECT_EQ(read(directory.filePath(s("target/a.txt"))), QByteArray("hello"));
    EXPECT_EQ(proxy->downloadDir(s("7"), {s("0")}, directory.filePath(s("target")), nullptr, {}).size(), 32);

    answer(proxy->callCloudMethod(s("changeRoamingMode"), {}, &receiver, "onResponse"));
    EXPECT_EQ(receiver.values, (stringMap{{s("roamingmode"), s("on")}}));
    for (const auto& unknown :
         {proxy->callCloudMethod(s("noSuchMethod"), {}, &receiver, "onResponse"),
          proxy->invokeCloudFunction(s("noSuchFunction"), QGenericArgument(), &receiver, "onResponse")}) {
        Q_UNUSED(unknown)
    }
    const int before = receiver.count;
    EXPECT_TRUE(QTest::qWaitFor([&] { return receiver.count == before + 2; }, patienceMs));
    EXPECT_FALSE(receiver.success);
    EXPECT_TRUE(receiver.values.isEmpty());
    proxy->callCloudMethod(s("getRoamingMode"), {}, nullptr, "");
}

TEST_F(ShellTransfers, GoOnByThemselvesWhenTheServiceDies)
{
    const QString path = directory.filePath(s("big.bin"));
    write(path, QByteArray(30'000'000, 'x'));
    QSignalSpy changes(proxy.get(), &ShellCloudSvrProxy::transfersChanged);
    drive.setFaults(R"({"/api/v1/drive/uploads/": {"delayMs": 60000, "times": 1}})");
    proxy->batchUploadFileListToAnyExistedPath(s("7"), s("0"), {path}, {}, true, nullptr, "", {});
    ASSERT_TRUE(QTest::qWaitFor([&] { return changes.count() > 0; }, patienceMs));
    EXPECT_EQ(list(TransferDirection::Upload).active, 1);
    end(SIGKILL);
    // Nobody asks for anything any more.
    EXPECT_TRUE(QTest::qWaitFor([&] { return drive.items(s("0")).size() == 1; }, patienceMs));
    proxy->cancelTransfers({s("t1")});
    proxy->retryTransfers({s("t1")});
    EXPECT_EQ(list(TransferDirection::Upload).finished, 1);
    EXPECT_EQ(list(TransferDirection::Upload).rows.value(0).name, s("big.bin"));
    proxy->clearFinishedTransfers(TransferDirection::Upload);
    EXPECT_EQ(list(TransferDirection::Upload).total, 0);
}

} // namespace

#include "shell_transfers.moc"
