#include "base/NReadOnce.h"
#include "offline/NDOPResourceManager.h"
#include "proxy/NCloudDocsRecordManager.h"
#include "proxy/NDOPSettings.h"
#include "proxy/NPackageRecords.h"
#include "server/NCloudDocsRequestTask.h"
#include "support/HttpStub.h"
#include "support/ShellFixture.h"

#include <QFile>
#include <QJsonDocument>
#include <QMessageAuthenticationCode>
#include <QSignalSpy>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int versionCheckItem = 62377;

/** A request task over a loopback documents server and a package "quillword" of version 1.0. */
class DocsNetwork : public ShellFixture
{
protected:
    void SetUp() override
    {
        ShellFixture::SetUp();
        nreadonce::resetForTest();
        runtime.libraryDir = QStringLiteral(SKYLEAF_LIBRARY_DIR);
        for (const char* key : {"quill", "quill_api"})
            services.domains.insert(QLatin1String(key), server.origin());
        services.documentsServiceHost = QStringLiteral("docs.test");
        package = directory.filePath(QStringLiteral("quillword"));
        QDir().mkpath(package);
        QFile version(package + QStringLiteral("/version"));
        version.open(QIODevice::WriteOnly);
        version.write(" 1.0\n");
        version.close();
        services.plugins.insert(QStringLiteral("quillword"), {package, {}});
    }

    void startTask(bool versionCheck = false)
    {
        start();
        if (versionCheck)
            host->configCentre().set(60, versionCheckItem, QJsonObject{{QStringLiteral("enabled"), true}});
        NHelioUserInfo user;
        user.userId = QStringLiteral("u");
        user.loggedIn = true;
        user.cookies = QStringLiteral("sid=1;");
        user.identity1 = QStringLiteral("one");
        user.identity2 = QStringLiteral("two");
        shell->setUser(user);
        task = std::make_unique<NCloudDocsRequestTask>(nullptr);
        QObject::connect(
            task.get(), &NCloudDocsRequestTask::requestTaskFinished,
            [this](const NCloudDocsRequestTaskResult& result) { results.insert(result.replyName, result); });
    }

    void run(const QString& officeType = QStringLiteral("w"))
    {
        NCloudDocsRequestTaskParam param;
        param.fileId = QStringLiteral("77");
        param.officeType = officeType;
        param.url = QStringLiteral("https://docs.test/p/77?officeType=w&startTime=9");
        param.connId = QStringLiteral("conn");
        param.injectId = QStringLiteral("inject");
        task->startRequest(param);
    }

    void TearDown() override
    {
        task.reset();
        ShellFixture::TearDown();
    }

    HttpStub server;
    QString package;
    std::unique_ptr<NCloudDocsRequestTask> task;
    QMap<QString, NCloudDocsRequestTaskResult> results;
};

const QByteArray preopen = "/api/v3/office/file/77/preopen/word";
const QByteArray officeConfig = "/office-config/77";
const QByteArray packageInfo = "/api/quill/office/prefetch/config";
const QByteArray versionCheck = "/api/v3/office/prefetch/vcs/77";

TEST_F(DocsNetwork, ARunSendsWhatTheFirstScreenNeeds)
{
    NDocsOfflinePage::NDOPSettings().setValue(QStringLiteral("weboffice_branch"), QStringLiteral("b1"));
    server.answer(
        preopen,
        {200, R"({"window.__VLTENV__": {"file_version": "4"}})", {{"Set-Cookie", "k=v"}, {"X-A", "1"}}});
    server.answer(officeConfig, {200, "{}", {}});
    startTask();
    NDocsOfflinePage::NDOPSettings().setValue(QStringLiteral("weboffice_branch"), QStringLiteral("b1"));
    QSignalSpy cookies(task.get(), &NCloudDocsRequestTask::sigAppendResponseCookies);
    run();
    ASSERT_TRUE(waitUntil([&] { return results.size() == 3; }));
    EXPECT_TRUE(results.contains(QStringLiteral("get_res_pck_info")));
    EXPECT_EQ(server.count("/"), 3) << "a text document has no content rendered by the server";

    const auto opened = server.last(preopen);
    EXPECT_EQ(opened.method, "POST");
    EXPECT_EQ(QJsonDocument::fromJson(opened.body).object(), task->getOpenFileRequestBody());
    EXPECT_EQ(opened.body, R"({"connid":"conn","front_ver":"1.0"})");
    EXPECT_EQ(opened.headers.value("cookie"), "sid=1;weboffice_branch=b1;vlt_endcloud=1;");
    EXPECT_EQ(opened.headers.value("x-cookie"), opened.headers.value("cookie"));
    EXPECT_EQ(opened.headers.value("origin"), "docs.test");
    EXPECT_FALSE(opened.headers.value("x-auth-code").isEmpty());
    EXPECT_EQ(server.last(officeConfig).target,
              "/office-config/77?part=file_info,font_name_map,config,plugin_config&startTime=9");
    EXPECT_EQ(server.last(packageInfo).body, R"([{"front_ver":"1.0","office_type":"word"}])");
    const auto configured = server.last(officeConfig).headers;
    EXPECT_EQ(configured.value("x-auth-code"),
              QMessageAuthenticationCode::hash(
                  "account\npc-office\none\n" + configured.value("x-auth-date") +
                      "\n/office-config/77?part=file_info,font_name_map,config,plugin_config",
                  "two", QCryptographicHash::Sha256)
                  .toHex())
        << "the time of the load is not part of what is signed";

    const NCloudDocsRequestTaskResult result = results.value(QStringLiteral("open_file"));
    EXPECT_EQ(result.frontVer, QStringLiteral("1.0"));
    EXPECT_EQ(result.connId, QStringLiteral("conn"));
    EXPECT_LE(result.startTime, result.endTime);
    EXPECT_TRUE(task->getOpenFileResponseHeaders().contains({"X-A", "1"}));
    turn();
    ASSERT_EQ(cookies.size(), 1);
    EXPECT_EQ(cookies.first().first().value<QList<QNetworkCookie>>().first().toRawForm(), "k=v");
}

TEST_F(DocsNetwork, TheVersionCheckIsSentOnceAndReplacesThePackageInformation)
{
    server.answer(versionCheck, {200, R"({"client_version": "2", "office_type": "w"})", {}});
    startTask(true);
    task->startVcsRequest({});
    task->startVcsRequest(QStringLiteral("77"));
    ASSERT_TRUE(waitUntil([&] { return results.contains(QStringLiteral("vcs")); }));
    EXPECT_EQ(server.last(versionCheck).target, versionCheck + "?office_type=");
    EXPECT_FALSE(server.last(versionCheck).headers.contains("cookie"));
    run();
    ASSERT_TRUE(waitUntil([&] { return results.contains(QStringLiteral("open_file")); }));
    EXPECT_EQ(server.count(versionCheck), 1);
    EXPECT_EQ(server.count(packageInfo), 0);
}

TEST_F(DocsNetwork, AVersionThatMustBeUpgradedIsNotNamed)
{
    startTask();
    npackagerecords::setMustUpgrade(QStringLiteral("w"), QStringLiteral("1.0"));
    run();
    ASSERT_TRUE(waitUntil([&] { return results.contains(QStringLiteral("open_file")); }));
    EXPECT_EQ(server.last(preopen).body, R"({"connid":"conn"})");
    EXPECT_EQ(results.value(QStringLiteral("open_file")).frontVer, QStringLiteral("1.0"));
}

TEST_F(DocsNetwork, ALateReplyKeepsTheVersionThatItWasAskedWith)
{
    startTask();
    QStringList versions;
    QObject::connect(task.get(), &NCloudDocsRequestTask::requestTaskFinished,
                     [&](const NCloudDocsRequestTaskResult& result) {
                         if (result.replyName == QLatin1String("get_res_pck_info"))
                             versions << result.frontVer;
                     });
    run();
    QFile version(package + QStringLiteral("/version"));
    ASSERT_TRUE(version.open(QIODevice::WriteOnly));
    version.write("2.0");
    version.close();
    nreadonce::resetForTest();
    run();
    ASSERT_TRUE(waitUntil([&] { return versions.size() == 2; }));
    versions.sort();
    EXPECT_EQ(versions, (QStringList{QStringLiteral("1.0"), QStringLiteral("2.0")}));
}

TEST_F(DocsNetwork, ARunWithoutAPackageSendsNothing)
{
    startTask();
    run(QStringLiteral("s"));
    QDir(package).removeRecursively();
    nreadonce::resetForTest();
    run();
    turn();
    EXPECT_EQ(server.requests().size(), 0);
}

TEST_F(DocsNetwork, TheRecordedPackageOfAFileComesFirst)
{
    startTask();
    const QString other = directory.filePath(QStringLiteral("other"));
    ASSERT_TRUE(QDir().mkpath(other));
    NCloudDocsRecordManager::instance()->updateEnvConfigRecord(QStringLiteral("77"), QStringLiteral("9"));
    NCloudDocsRequestTaskParam param;
    param.fileId = QStringLiteral("77");
    param.officeType = QStringLiteral("w");
    EXPECT_EQ(nrequestrun::retrieveDopPluginPath(param), package) << "no path is recorded";
    NCloudDocsRecordManager::instance()->updatePluginPathRecord(QStringLiteral("w"), QStringLiteral("9"),
                                                                other);
    EXPECT_EQ(nrequestrun::retrieveDopPluginPath(param), other);
    QDir(other).removeRecursively();
    EXPECT_EQ(nrequestrun::retrieveDopPluginPath(param), package) << "the recorded one is gone";
}

TEST_F(DocsNetwork, FailedRequestsAreReportedWithTheirErrorAndKeepTheBody)
{
    server.answer(preopen, {500, "sorry", {{"X-B", "2"}}});
    server.answer(officeConfig, {200, "cut", {}, 1});
    startTask();
    run();
    ASSERT_TRUE(waitUntil([&] { return results.size() == 3; }));
    EXPECT_EQ(results.value(QStringLiteral("open_file")).data, "sorry");
    EXPECT_TRUE(task->getOpenFileResponseHeaders().contains({"X-B", "2"}));
    QMap<QString, NDcOrderedFields> reports;
    for (const auto& event : host->dataCollection().events()) {
        if (event.name == QLatin1String("docs_localproxy_dop_network"))
            reports.insert(event.fields.value(QStringLiteral("name")), event.fields);
    }
    ASSERT_EQ(reports.size(), 3);
    for (const NDcOrderedFields& report : qAsConst(reports)) {
        EXPECT_EQ(report.value(QStringLiteral("result")), QStringLiteral("0"));
        EXPECT_NE(report.value(QStringLiteral("errorcode")), QStringLiteral("0"));
        EXPECT_EQ(report.value(QStringLiteral("pb")), QStringLiteral("1"));
    }
    EXPECT_EQ(reports.value(QStringLiteral("open_file")).value(QStringLiteral("url")),
              server.origin() + QString::fromLatin1(preopen));
}

TEST_F(DocsNetwork, ADataUpgradeIsAFormAndADownloadAFile)
{
    server.answer("/up", {200, "taken", {}});
    server.answer("/down", {200, QByteArray(9 << 20, 'x'), {}});
    startTask();
    QMap<QString, QByteArray> finished;
    QObject::connect(task.get(), &NCloudDocsRequestTask::sigRequestFromApiFinished,
                     [&](const QString& name, const QByteArray& data) { finished.insert(name, data); });
    task->startDataUpgrade(server.origin() + QStringLiteral("/up"), QStringLiteral("{}"),
                           package + QStringLiteral("/version"));
    const QString target = directory.filePath(QStringLiteral("down"));
    task->startDownloadFileFromURL(server.origin() + QStringLiteral("/down"), target);
    ASSERT_TRUE(waitUntil([&] { return finished.size() == 2; }));
    EXPECT_EQ(finished.value(QStringLiteral("data_upgrade")), "taken");
    const QByteArray form = server.last("/up").body;
    EXPECT_TRUE(form.contains("form-data; name=\"file\"; filename=\"version\"") &&
                form.contains("\r\n\r\n 1.0\n"));
    EXPECT_TRUE(form.contains("form-data; name=\"package_info\"\r\n\r\n{}"));
    EXPECT_EQ(server.last("/up").headers.value("cookie"), "sid=1;");
    EXPECT_EQ(finished.value(QStringLiteral("download_file")), "1");
    EXPECT_EQ(QFileInfo(target).size(), 9 << 20);

    finished.clear();
    task->startDataUpgrade(server.origin() + QStringLiteral("/up"), {}, package + QStringLiteral("/missing"));
    task->startDownloadFileFromURL(server.origin() + QStringLiteral("/down"), package);
    ASSERT_TRUE(waitUntil([&] { return finished.size() == 2; }));
    EXPECT_EQ(finished.value(QStringLiteral("download_file")), "0");
    EXPECT_TRUE(finished.value(QStringLiteral("data_upgrade")).isEmpty());
}

TEST_F(DocsNetwork, ADownloadThatIsCompleteBeforeItIsWrittenLosesNothing)
{
    constexpr int size = 8 << 20; // more than the bytes on their way to the writer may be
    server.answer("/down", {200, QByteArray(size, 'x'), {}});
    const QByteArray pipe = QFile::encodeName(directory.filePath(QStringLiteral("pipe")));
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
    const int reader = ::open(pipe.constData(), O_RDONLY | O_NONBLOCK); // stands in for a slow disk
    ASSERT_GE(reader, 0);
    startTask();
    task->startDownloadFileFromURL(server.origin() + QStringLiteral("/down"), QFile::decodeName(pipe));
    EXPECT_TRUE(waitUntil([&] {
        const auto& events = host->dataCollection().events();
        return !events.empty() &&
               events.back().fields.value(QStringLiteral("name")) == QLatin1String("download_file");
    })) << "the reply is complete";

    qint64 written = 0;
    EXPECT_TRUE(waitUntil([&] {
        QByteArray bytes(1 << 20, '\0');
        written += qMax<ssize_t>(0, ::read(reader, bytes.data(), size_t(bytes.size())));
        return written >= size;
    })) << written;
    EXPECT_TRUE(QThreadPool::globalInstance()->waitForDone(5000));
    ::close(reader);
}

TEST_F(DocsNetwork, APageThatClosesDuringADownloadEndsIt)
{
    HttpStub::Answer slow{200, QByteArray(1000, 'x'), {}};
    slow.silent = true;
    server.answer("/", slow);
    startTask();
    task->startDownloadFileFromURL(server.origin() + QStringLiteral("/down"),
                                   directory.filePath(QStringLiteral("down")));
    run();
    ASSERT_TRUE(waitUntil([&] { return server.count("/down") == 1 && server.count(preopen) == 1; }));
    task.reset();
    EXPECT_TRUE(QThreadPool::globalInstance()->waitForDone(5000));
}

} // namespace
