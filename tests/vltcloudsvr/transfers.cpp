#include "TransfersFixture.h"
#include "support/HttpStub.h"

#include <gmock/gmock.h>

#include <QCryptographicHash>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace testfiles;
using namespace vlt::cloudsvr;

constexpr int megabyte = 1024 * 1024;

class Transfers : public TransfersFixture
{
protected:
    QString field(const Values& values, const QString& path, int index)
    {
        return values.value(path + s("_result")).split(u'|').value(index);
    }
    QString uploaded(const QString& path) // the file's id
    {
        uploadFiles({path});
        EXPECT_TRUE(uploadEnd(path).startsWith(s("ok/t")));
        return field(states(names::uploadStates, path), path, 6);
    }
};

TEST_F(Transfers, BringsFoldersBothWaysThoughTheServiceIsKilled)
{
    const QStringList expected = [&] {
        for (int i = 0; i < 30; ++i)
            makeFile(s("top/d%1/f%2.bin").arg(i % 4).arg(i), i * 1000);
        for (int i = 0; i < 5; ++i)
            makeFile(s("top/d1/deep/big%1.bin").arg(i), 3 * megabyte + i);
        makeFile(s("top/.hidden/.f"), 10);
        makeFile(s("top/n\u00e4me | 100%.txt"), 7);
        QDir().mkpath(source + s("/top/empty"));
        const QStringList paths = tree(source + s("/top"));
        EXPECT_EQ(::symlink("/etc", QFile::encodeName(source + s("/top/link")).constData()), 0);
        EXPECT_EQ(::mkfifo(QFile::encodeName(source + s("/top/fifo")).constData(), 0600), 0);
        return paths;
    }();
    QStringList files;
    for (const QString& path : expected) {
        if (QFileInfo(source + s("/top/") + path).isFile() && !path.contains(u'|'))
            files.append(source + s("/top/") + path);
    }
    // So slow that there is always something left when the service is killed.
    drive.setShaping(R"({"rttMs": 5, "kbps": 30000})");
    call(names::folderUpload,
         {{s("groupid"), s("7")}, {s("parentid"), s("0")}, {s("path"), source + s("/top")}});
    const auto finished = [&] {
        const Values all = states(names::uploadStates, files.join(u'|'));
        EXPECT_EQ(all.size(), files.size() * 2) << "each file is known at once";
        return std::count_if(files.begin(), files.end(),
                             [&](const QString& file) { return all.value(file).startsWith(s("ok/")); });
    };
    for (const int atLeast : {3, 32}) {
        ASSERT_TRUE(waitFor([&] { return finished() >= atLeast; }));
        EXPECT_LT(finished(), files.size()) << "too late to kill";
        end(SIGKILL);
    }
    ASSERT_TRUE(waitFor([&] { return finished() == files.size(); }));
    ASSERT_TRUE(waitFor([&] { return list(TransferDirection::Upload).active == 0; }));

    const QString folder = drive.idOf(s("top"));
    for (const QString& name : {s("one"), s("two")})
        QDir(target).mkdir(name);
    const auto download = [&](const QString& to) {
        call(names::downloadDir, {{s("groupid"), s("7")}, {s("folderids"), folder}, {s("directory"), to}});
    };
    download(target + s("/one"));
    for (const int atLeast : {3, 30}) {
        ASSERT_TRUE(waitFor([&] { return list(TransferDirection::Download).finished >= atLeast; }));
        EXPECT_EQ(downloads(folder).first, s("downloading")) << "too late to kill";
        end(SIGKILL);
    }
    EXPECT_EQ(downloadEnd(folder).at(0).toObject().value(s("state")).toString(), s("finished"));
    EXPECT_EQ(tree(target + s("/one/top")), expected) << "nothing twice, nothing left over";
    for (const QString& path : expected) {
        if (QFileInfo(source + s("/top/") + path).isFile()) {
            EXPECT_EQ(read(target + s("/one/top/") + path), read(source + s("/top/") + path))
                << qPrintable(path);
        }
    }
    download(target + s("/one"));
    downloadEnd(folder);
    EXPECT_EQ(tree(target + s("/one/top (1)")), expected) << "what is there is left alone";
}

TEST_F(Transfers, GoOnWhereTheConnectionBroke)
{
    const QString big = makeFile(s("big.bin"), 20 * megabyte);
    drive.setFaults(R"({"/api/v1/drive/uploads/": {"cutAfter": 9000000, "times": 1}})");
    uploadFiles({big});
    ASSERT_TRUE(uploadEnd(big).startsWith(s("ok/")));
    const QString id = drive.idOf(s("big.bin"));
    drive.setFaults(R"({"/api/v1/drive/files/": {"cutAfter": 7000000, "times": 2}})");
    const QString task = downloadFiles(id).value(s("taskids"));
    EXPECT_EQ(downloadEnd(task).at(0).toObject().value(s("path")).toString(), target + s("/big.bin"));
    EXPECT_EQ(read(target + s("/big.bin")), read(big));

    int sentAgain = 0;
    QStringList ranges;
    for (const QJsonValue& value : drive.ask("GET", s("/_control/log")).value(s("requests")).toArray()) {
        const QJsonObject request = value.toObject();
        const QString asked = request.value(s("target")).toString();
        if (asked.contains(s("?offset="))) {
            EXPECT_EQ(request.value(s("cookie")).toString(), s("sid=1; vlt_sid=*"));
            sentAgain += !asked.endsWith(s("=0"));
        }
        if (asked.endsWith(s("/content")))
            ranges.append(request.value(s("headers")).toObject().value(s("range")).toString());
    }
    EXPECT_EQ(sentAgain, 1);
    EXPECT_EQ(ranges, (QStringList{QString(), s("bytes=7000000-"), s("bytes=14000000-")}));
    EXPECT_EQ(tree(target), QStringList{s("big.bin")});
}

TEST_F(Transfers, MakeVersionsAndKeepWhatIsThere)
{
    apiUrl = s("https://docs.test"); // with the certificate of a mapped host
    const QString path = makeFile(s("a.txt"), 100);
    const QByteArray first = *read(path);
    const QString id = uploaded(path);
    makeFile(s("other/a.txt"), 300);
    makeFile(s("b.txt"), 200);
    const QString version = source + s("/b.txt");
    uploadFiles({version}, s("0"), id);
    ASSERT_TRUE(uploadEnd(version).startsWith(s("ok/")));
    const Values values = states(names::uploadStates, version);
    EXPECT_EQ(field(values, version, 6), id);
    EXPECT_EQ(field(values, version, 4), s("200"));
    EXPECT_EQ(drive.items(s("0")).size(), 1) << "the file has kept its name";

    write(target + s("/a.txt"), "mine");
    const QStringList tasks{downloadFiles(id + s("|") + id).value(s("taskids")),
                            downloadFiles(id, s("1")).value(s("taskids"))};
    downloadEnd(tasks.join(u'|'));
    EXPECT_EQ(tree(target), (QStringList{s("a (1).txt"), s("a (2).txt"), s("a.txt")}));
    EXPECT_EQ(read(target + s("/a.txt")), QByteArray("mine"));
    QList<QByteArray> got{*read(target + s("/a (1).txt")), *read(target + s("/a (2).txt"))};
    EXPECT_THAT(got, testing::UnorderedElementsAre(first, *read(version)));
}

TEST_F(Transfers, SayWhatFailsAndTryAgainWhatMayWork)
{
    const QString large = makeFile(s("large.bin"), megabyte);
    const QString small = makeFile(s("small.bin"), 10);
    const QByteArray puts = "/api/v1/drive/groups/7/folders/0/files";
    struct Case
    {
        const char* what;
        QString path;
        QByteArray faults;
        const char* state; // its beginning
    };
    ::mkfifo(QFile::encodeName(source + s("/fifo")).constData(), 0600);
    const std::vector<Case> table = {
        {"vanished", source + s("/none"), "{}", "fail/0/item/"},
        {"a folder", source, "{}", "fail/0/item/"},
        {"a FIFO", source + s("/fifo"), "{}", "fail/0/item/"},
        {"refused", small, R"({")" + puts + R"(": {"status": 403}})", "fail/0/403/"},
        {"the server's errors end", small, R"({")" + puts + R"(": {"status": 500, "times": 2}})", "ok/"},
        {"the server's errors do not end", small, R"({")" + puts + R"(": {"status": 500}})", "fail/0/500/"},
        {"garbage", small, R"({")" + puts + R"(": {"body": "<html>"}})", "fail/0/badAnswer/"},
        {"never reached", small, R"({")" + puts + R"(": {"reset": true}})", "fail/0/connection/"},
        {"the session is lost", large, R"({"/api/v1/drive/uploads/": {"status": 404, "times": 1}})", "ok/"},
        {"a full disk there", large, R"({"/api/v1/drive/uploads/": {"status": 507}})", "fail/0/507/"}};
    for (const auto& [what, path, faults, state] : table) {
        call(names::clearFinishedTransfers, {{positionKey(0), s("upload")}});
        drive.setFaults(faults);
        uploadFiles({path});
        const QString end = uploadEnd(path);
        EXPECT_TRUE(end.startsWith(s(state))) << what << ": " << qPrintable(end);
        EXPECT_EQ(end.count(u'/'), s(state).startsWith(s("ok")) ? 1 : 5) << qPrintable(end);
    }
    drive.setFaults("{}");
    const QString task = list(TransferDirection::Upload).rows.value(0).id;
    EXPECT_EQ(call(names::retryTransfers, {{positionKey(0), task + s("|t999|x")}}).values.value(s("count")),
              s("1"));
    EXPECT_EQ(uploadEnd(large), s("ok/") + task);

    const QString unknown = downloadFiles(s("4711")).value(s("taskids"));
    EXPECT_EQ(downloadEnd(unknown).at(0).toObject().value(s("state")).toString(), s("failed"));
    EXPECT_EQ(downloads(s("t999|nobody")).first, s("notask"));
    for (const Values& wrong : {Values{}, Values{{s("groupid"), s("../1")}, {s("parentid"), s("0")}}})
        EXPECT_EQ(call(names::folderUpload, wrong).code, ResultCode::BadArgument);
}

TEST_F(Transfers, StopAndBeginAnewAndAreForgotten)
{
    const QString big = makeFile(s("big.bin"), 40 * megabyte);
    drive.setFaults(R"({"/api/v1/drive/uploads/": {"delayMs": 60000}})");
    uploadFiles({big});
    const QString first = uploadFiles({big}).value(s("taskids"));
    ASSERT_TRUE(waitFor([&] { return uploadState(big).startsWith(s("uploading/100/")); }));
    EXPECT_EQ(list(TransferDirection::Upload).total, 1) << "twice the same is once";
    drive.setFaults("{}");
    call(names::cancelTransfers, {{positionKey(0), first}});
    EXPECT_EQ(uploadState(big), s("stop/") + first);
    ASSERT_TRUE(waitFor([&] {
        return drive.ask("GET", s("/_control/drive")).value(s("uploads")).toInt() == 0;
    })) << "the service's part is dropped";
    EXPECT_TRUE(drive.items(s("0")).isEmpty());
    call(names::retryTransfers, {{positionKey(0), first}});
    EXPECT_EQ(uploadEnd(big), s("ok/") + first);
    call(names::clearFinishedTransfers, {{positionKey(0), s("upload")}});
    EXPECT_EQ(list(TransferDirection::Upload).total, 0);
    EXPECT_EQ(uploadState(big), QString());

    drive.setShaping(R"({"kbps": 80000})");
    const QString task = downloadFiles(drive.idOf(s("big.bin"))).value(s("taskids"));
    ASSERT_TRUE(waitFor([&] { return list(TransferDirection::Download).done > 0; }));
    EXPECT_FALSE(tree(target).isEmpty());
    call(names::cancelTransfers, {{positionKey(0), task}});
    ASSERT_TRUE(waitFor([&] { return tree(target).isEmpty(); })) << "no part is left";
}

TEST_F(Transfers, KeepTheServiceAliveWithoutAnyClient)
{
    const QString big = makeFile(s("big.bin"), 40 * megabyte);
    // An idle service stays for one second.
    drive.setFaults(R"({"/api/v1/drive/uploads": {"delayMs": 3000, "times": 1}})");
    uploadFiles({big});
    shell.reset();
    ASSERT_TRUE(waitFor([&] { return !isServiceThere(); }));
    EXPECT_EQ(drive.items(s("0")).size(), 1);
    connectService();
    EXPECT_TRUE(uploadState(big).startsWith(s("ok/")));
}

TEST_F(Transfers, FailWhenTheSourceChangesMeanwhile)
{
    const QString big = makeFile(s("big.bin"), 40 * megabyte);
    drive.setFaults(R"({"/api/v1/drive/uploads/": {"delayMs": 1000, "times": 1}})");
    uploadFiles({big});
    ASSERT_TRUE(waitFor([&] { return uploadState(big).startsWith(s("uploading/100/")); }));
    QFile file(big);
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("more");
    file.close();
    EXPECT_TRUE(uploadEnd(big).startsWith(s("fail/0/sourceChanged/")));
    EXPECT_TRUE(drive.items(s("0")).isEmpty());
}

TEST_F(Transfers, StayInTheDirectoryWhateverTheServiceSays)
{
    HttpStub stub;
    apiUrl = stub.origin();
    resolve.clear();
    const auto folder = [&](const QByteArray& id, const QList<QByteArray>& items) {
        stub.answer("/api/v1/drive/groups/7/folders/" + id,
                    {200, "{\"items\":[" + items.join(',') + "]}", {}});
    };
    const auto item = [](const QByteArray& id, const QByteArray& name, const QByteArray& type) -> QByteArray {
        return R"({"id":")" + id + R"(","name":")" + name + R"(","type":")" + type +
               R"(","size":4,"sha1":"","mtime":0,"version":1})";
    };
    const QByteArray tag = "\"" + QCryptographicHash::hash("evil", QCryptographicHash::Sha1).toHex() + "\"";
    stub.answer("/api/v1/drive/files/", {200, "evil", {{"ETag", tag}}});
    stub.answer("/api/v1/drive/files/13/", {200, "other", {{"ETag", tag}}});
    stub.answer("/api/v1/drive/files/14/", {200, "evil", {{"ETag", "\"x\""}}});
    stub.answer("/api/v1/drive/items/1", {200, item("1", "good", "folder"), {}});
    const QByteArray longName(256, 'x');
    folder("1", {item("2", "..", "folder"), item("3", "sub", "folder"), item("10", "../evil", "file"),
                 item("11", "a\\u0000b", "file"), item("12", longName, "file"), item("13", "bad sum", "file"),
                 item("14", "no sum", "file"), item("15", "", "file"), item("16", "fine", "file")});
    folder("3", {item("17", "caught", "file")});
    // A link that somebody put where the folder is going to be.
    QDir(directory.path()).mkdir(s("outside"));
    call(names::downloadDir, {{s("groupid"), s("7")}, {s("folderids"), s("1")}, {s("directory"), target}});
    ASSERT_TRUE(waitFor([&] { return QFileInfo::exists(target + s("/good")); }));
    const bool isLinked = ::symlink(QFile::encodeName(directory.filePath(s("outside"))).constData(),
                                    QFile::encodeName(target + s("/good/sub")).constData()) == 0;
    const QJsonObject task = downloadEnd(s("1")).at(0).toObject();
    EXPECT_EQ(task.value(s("state")).toString(), s("failed"));
    EXPECT_EQ(tree(directory.filePath(s("outside"))), QStringList());
    EXPECT_EQ(read(target + s("/good/fine")), QByteArray("evil"));
    EXPECT_EQ(list(TransferDirection::Download).failed, isLinked ? 8 : 7);
    EXPECT_EQ(QDir(target).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{s("good")});
}

TEST_F(Transfers, KeepTheRoamingModeOfEachUser)
{
    EXPECT_EQ(call(names::getRoamingMode, {}).values.value(s("roamingmode")), s("off"));
    EXPECT_EQ(call(names::changeRoamingMode, {}).values.value(s("roamingmode")), s("on"));
    end(SIGKILL);
    EXPECT_EQ(call(names::getRoamingMode, {}).values.value(s("roamingmode")), s("on"));
    EXPECT_EQ(call(names::changeRoamingMode, {{positionKey(0), s("perhaps")}}).code, ResultCode::BadArgument);
}

TEST_F(Transfers, AreAddedOnceWhenTheSameOrderComesTwice)
{
    const auto order = [this](const char* requestId) {
        return call(names::downloadFiles,
                    {{s("fileids"), s("f1|f2")}, {s("directory"), target}, {requestIdKey, s(requestId)}})
            .values;
    };
    const Values first = order("r1");
    EXPECT_EQ(first.value(s("taskids")).count(u'|'), 1);
    EXPECT_EQ(order("r1"), first);
    end(SIGKILL);
    EXPECT_EQ(order("r1"), first);
    EXPECT_EQ(list(TransferDirection::Download).total, 2);
    EXPECT_NE(order("r2"), first);
    EXPECT_EQ(list(TransferDirection::Download).total, 4);
}

} // namespace
