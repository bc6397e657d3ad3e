#include "DriveProcess.h"
#include "SocketQueues.h"
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
        qRegisterMetaType<TransferDirection>("vlt::cloudsvr::TransferDirection");
        connectTo(s(SERVICE_PROGRAM));
    }
    void connectTo(const QString& program)
    {
        proxy = std::make_unique<ShellCloudSvrProxy>(
            user, ShellCloudService{{program, dataDir, {s("--idle-exit-seconds"), s("1")}},
                                    s("http://docs.test"),
                                    drive.resolve()});
    }
    ~ShellTransfers() override
    {
        proxy.reset();
        end(SIGTERM);
    }
    void send(int signal) const
    {
        const auto place = vlt::cloudsvr::placeOf(dataDir);
        if (isServed(place))
            ::kill(read(place.lockPath)->trimmed().toInt(), signal);
    }
    void end(int signal)
    {
        send(signal);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !isServed(vlt::cloudsvr::placeOf(dataDir)); }, patienceMs));
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

TEST_F(ShellTransfers, ArriveOnceWhenTheServiceDiesBeforeItAnswers)
{
    EXPECT_EQ(list(TransferDirection::Upload).total, 0);
    QSignalSpy failures(proxy.get(), &ShellCloudSvrProxy::orderFailed);
    // The second time the service was started a moment ago.
    for (int round = 1; round <= 2; ++round) {
        const QString path = directory.filePath(s("%1.txt").arg(round));
        write(path, "hello");
        send(SIGSTOP);
        // Much to send, and ignored for more than one path.
        const QString fileId(100'000, u'x');
        const QString id = proxy->batchUploadFileListToAnyExistedPath(s("7"), s("0"), {path, path}, fileId,
                                                                      true, &receiver, "onMap", {});
        proxy->downloadDir(s("7"), {s("0")}, directory.filePath(s("target")), nullptr, {});
        EXPECT_TRUE(QTest::qWaitFor(&isSendingMuch, patienceMs));
        end(SIGKILL);
        answer(id);
        EXPECT_TRUE(receiver.success);
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return list(TransferDirection::Upload).finished == round; }, patienceMs));
    }
    EXPECT_EQ(drive.items(s("0")).size(), 2);
    EXPECT_EQ(failures.count(), 0);
}

TEST_F(ShellTransfers, AreReportedWhenTheServiceDoesNotTakeThem)
{
    const QString path = directory.filePath(s("a.txt"));
    const QString folder = directory.filePath(s("folder"));
    const QString inside = folder + s("/b.txt");
    const QString other = directory.filePath(s("folder2/b.txt"));
    write(path, "hello");
    connectTo(s("/no/such/program"));
    QSignalSpy failures(proxy.get(), &ShellCloudSvrProxy::orderFailed);
    answer(
        proxy->batchUploadFileListToAnyExistedPath(s("7"), s("3"), {path}, {}, true, &receiver, "onMap", {}));
    EXPECT_FALSE(receiver.success);
    answer(proxy->folderUpload(s("7"), s("3"), folder, &receiver, "onMap", {}));
    answer(
        proxy->downloadCloudFiles({s("1")}, directory.filePath(s("target")), {}, &receiver, "onDownloads"));
    EXPECT_FALSE(receiver.success);
    EXPECT_EQ(failures.count(), 3);

    const auto states = [&](const QStringList& paths) {
        answer(proxy->invokeCloudFunction(s("getBatchUploadFileListState"),
                                          Q_ARG(QStringList, QStringList{paths.join(u'|')}), &receiver,
                                          "onResponse"));
        return receiver.values;
    };
    const stringMap told = states({path, inside, other});
    EXPECT_EQ(told.size(), 4);
    EXPECT_EQ(told.value(path + s("_result")), s("0|7|3|%1|5||").arg(path));
    const QString prefix = s("fail/0/service//order/");
    EXPECT_TRUE(told.value(path).startsWith(prefix) && told.value(inside).startsWith(prefix));
    EXPECT_EQ(
        QByteArray::fromBase64(told.value(path).mid(prefix.size()).toLatin1(), QByteArray::Base64UrlEncoding),
        "The cloud service does not answer");

    // It is on its way once it is ordered again; of another user nothing is told.
    const QString again = proxy->batchUploadFileListToAnyExistedPath(s("7"), s("3"), {inside}, {}, true,
                                                                     &receiver, "onMap", {});
    user.userId = s("bert");
    proxy->setUser(user);
    answer(again);
    EXPECT_TRUE(states({path, inside}).isEmpty());
}

} // namespace

#include "shell_transfers.moc"
