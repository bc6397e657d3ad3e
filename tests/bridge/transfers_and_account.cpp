#include "bridge/CloudFileDialog.h"
#include "bridge/TransferStates.h"

#include "BridgeFixture.h"

#include "support/HttpStub.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QNetworkReply>

namespace {

using ScriptMethods = BridgeFixture;

TEST_F(ScriptMethods, UploadRecordsBecomeItems)
{
    start();
    struct Case
    {
        const char* result;
        const char* state;
        const char* report; //!< empty: the path is skipped
    };
    const Case cases[] = {
        {"0|g|p|/a|12|abc|77", "ok/t1",
         R"({"src":"/a","uploadTo":{"groupid":"g","parentid":"p"},"size":"12","taskId":"t1","sha1":"abc","fileid":"77"})"},
        {"0|g|p|/a|12||", "fail/0/403/t1/9/w7_Cvz8-fiB2b2xs",
         R"({"src":"/a","uploadTo":{"groupid":"g","parentid":"p"},"size":"12","taskId":"t1","result":"Failed",
             "errorCode":"403","errorDetailCode":"9","msg":"ÿ¿?>~ voll"})"},
        {"|g||/a|||", "fail",
         R"({"src":"/a","uploadTo":{"groupid":"g","parentid":""},"size":"","taskId":"","result":"Failed",
             "errorCode":"","errorDetailCode":"","msg":"Failed to Upload"})"},
        {"||||||", "stopped/t",
         R"({"src":"","uploadTo":{"groupid":"","parentid":""},"size":"","taskId":"t","result":"Stop","msg":"Stop to Uoload"})"},
        {"||||||", "uploading/40/t",
         R"({"src":"","uploadTo":{"groupid":"","parentid":""},"size":"","taskId":"t","percent":"40"})"},
        {"||||||", "queue/x/t",
         R"({"src":"","uploadTo":{"groupid":"","parentid":""},"size":"","taskId":"t","percent":0})"},
        {"|||||", "ok/t", ""},
        {"|\"|\\|\t|||", "ok",
         R"({"src":"\t","uploadTo":{"groupid":"\"","parentid":"\\"},"size":"","taskId":"","sha1":"","fileid":""})"},
        {"||||||", "waiting", ""},
        {"||||||", "", ""},
    };
    const QString path = QStringLiteral("/a");
    for (const Case& c : cases) {
        const auto item = uploadItem(
            {{path + QStringLiteral("_result"), QLatin1String(c.result)}, {path, QLatin1String(c.state)}},
            path);
        ASSERT_EQ(item.has_value(), *c.report != '\0') << c.state;
        if (!item)
            continue;
        EXPECT_EQ(json(item->report.toUtf8()), json(c.report)) << c.state;
    }
}

TEST_F(ScriptMethods, AnUploadIsWatchedUntilNothingIsUnderWay)
{
    start();
    call("fileUploadListener", R"({"callback":"onUp"})");
    QDir().mkpath(directory.filePath(QStringLiteral("f/sub")));
    QFile hidden(directory.filePath(QStringLiteral("f/sub/.h")));
    ASSERT_TRUE(hidden.open(QIODevice::WriteOnly));
    ASSERT_TRUE(QFile::link(hidden.fileName(), directory.filePath(QStringLiteral("f/link"))));
    const QString folder = directory.filePath(QStringLiteral("f"));
    call("uploadFileDrag", R"({"groupid":"","files":["/x"]})");
    EXPECT_TRUE(application->cloud.calls.isEmpty());
    call("uploadFileDrag", "{\"groupid\":\"g\",\"files\":[\"/x/1\",\"" + folder.toUtf8() + "\"]}");
    EXPECT_EQ(
        application->cloud.calls,
        (QStringList{QStringLiteral("folderUpload g 0 %1 onBatchUploadFileListToAnyExistedPath").arg(folder),
                     QStringLiteral("upload g 0 /x/1 ")}));

    application->cloud.calls.clear();
    bridge->onGetUploadStateTimerTimeout();
    const QString query = application->cloud.calls.value(0);
    EXPECT_TRUE(query.startsWith(QStringLiteral("getBatchUploadFileListState QStringList ")));
    EXPECT_TRUE(query.contains(hidden.fileName()) && query.contains(u'|') &&
                !query.contains(QStringLiteral("link")))
        << query.toStdString();

    const auto state = [&](const char* first, const char* second) {
        const QString result = QStringLiteral("_result");
        const QString fields = QStringLiteral("|g|0|s|1|h|9");
        container->transport.functionCalls.clear();
        bridge->onGetBatchUploadFileListState(true, {},
                                              {{{QStringLiteral("/x/1"), QLatin1String(first)},
                                                {QStringLiteral("/x/1") + result, fields},
                                                {hidden.fileName(), QLatin1String(second)},
                                                {hidden.fileName() + result, fields}}});
        const QStringList calls = functionCalls();
        EXPECT_EQ(calls.size(), 1);
        const QByteArray text = calls.value(0).mid(5).toUtf8();
        const QJsonObject report = json(text);
        EXPECT_EQ(text, QJsonDocument(report).toJson().replace('\n', ""));
        QStringList counts;
        for (const QString& key : report.keys())
            counts << QStringLiteral("%1:%2").arg(key).arg(report.value(key).toArray().size());
        return counts.join(u' ');
    };
    const auto watched = [&] {
        application->cloud.calls.clear();
        bridge->onGetUploadStateTimerTimeout();
        return application->cloud.calls.value(0).contains(QStringLiteral("/x/1"));
    };
    EXPECT_EQ(state("queue", "uploading/3/t"), QStringLiteral("failed:0 queued:2 success:0"));
    EXPECT_EQ(state("ok/t", "stop/t"), QStringLiteral("failed:1 queued:0 success:1"));
    EXPECT_EQ(state("ok/t", "stop/t"), QStringLiteral("failed:1 queued:0 success:0")) << "reported once";
    EXPECT_TRUE(watched());
    EXPECT_EQ(state("ok/t", "fail"), QStringLiteral("failed:1 success:0"));
    EXPECT_FALSE(watched());
}

TEST_F(ScriptMethods, TheSixthIdlePollEndsTheDownloadWatch)
{
    start();
    call("fileDownloadListener", R"({"callback":"onDown"})");
    bridge->onBatchDownloadCloudFilesToPath(true, {}, {{"t1", "t2"}});
    const auto watched = [&] {
        application->cloud.calls.clear();
        bridge->onGetDownloadStateTimerTimeout();
        return application->cloud.calls.value(0).contains(QStringLiteral("t1"));
    };
    const auto poll = [&](const char* text) {
        bridge->onGetBatchDownloadCloudFilesState(true, {},
                                                  {{{QStringLiteral("jsonConten"), QLatin1String(text)}}});
    };
    for (int idle = 0; idle < 4; ++idle)
        poll("notask|{}");
    poll("downloading|{\n\t\"a\":1}");
    for (int idle = 0; idle < 5; ++idle)
        poll("finished|{}");
    EXPECT_TRUE(watched());
    poll("prestart|{}");
    EXPECT_FALSE(watched());
    EXPECT_EQ(functionCalls().size(), 11);
    EXPECT_EQ(functionCalls().at(4), QStringLiteral("onDown {\"a\":1}"));
    bridge->onBatchDownloadCloudFilesToPath(true, {}, {{"t1"}});
    bridge->onGetBatchDownloadCloudFilesState(false, {}, {});
    EXPECT_FALSE(watched()) << "the query failed";
}

TEST_F(ScriptMethods, WhatADocumentWaitsForEndsWithIt)
{
    HttpStub server;
    server.answer("/robots.txt", {200, "User-agent: *", {}});
    runtime.productConfig.insert(QStringLiteral("resolve/docs.test"), server.origin().mid(7));
    start();
    const auto listen = [this] {
        call("fileUploadListener", R"({"callback":"onAny"})");
        call("fileDownloadListener", R"({"callback":"onAny"})");
    };
    listen();
    call("registerCookieUpdateHandler", R"({"callback":"onAny"})");
    call("checkNetwork", R"({"callback":"onAny"})");
    call("getRoamingMode"); // request1
    call("uploadFileDrag", R"({"groupid":"g","files":["/x/1"]})");
    bridge->onGetUploadStateTimerTimeout(); // request3
    bridge->onBatchDownloadCloudFilesToPath(true, {}, {{"t1"}});
    bridge->onGetDownloadStateTimerTimeout(); // request4
    const QMap<QString, QString> queued{{QStringLiteral("/x/1"), QStringLiteral("queue")},
                                        {QStringLiteral("/x/1_result"), QStringLiteral("|g|0|s|1|h|9")},
                                        {QStringLiteral("jsonConten"), QStringLiteral("downloading|{}")}};
    bridge->onGetBatchUploadFileListState(true, {}, {queued});
    EXPECT_EQ(functionCalls().size(), 1);

    // The next document has functions of the same names.
    container->transport.functionCalls.clear();
    container->deliverNextDocument(*bridge);
    bridge->notifyLoginStatus();
    listen();
    bridge->OnGetRoamingMode(true, QStringLiteral("request1"), {});
    bridge->onGetBatchUploadFileListState(true, QStringLiteral("request3"), {queued});
    bridge->onGetBatchDownloadCloudFilesState(true, QStringLiteral("request4"), {queued});
    ASSERT_TRUE(
        waitUntil([this] { return bridge->findChildren<QNetworkReply*>().isEmpty(); })); // was checked
    EXPECT_TRUE(functionCalls().isEmpty()) << functionCalls().join(u';').toStdString();
    EXPECT_TRUE(container->transport.resolved.empty());

    // Its own transfers are watched alone, and end the watch: nobody waits for the upload of before.
    call("uploadFileDrag", R"({"groupid":"g","files":["/x/2"]})");
    bridge->onGetUploadStateTimerTimeout();
    EXPECT_TRUE(application->cloud.calls.last().contains(QStringLiteral("QStringList /x/2 ")));
    const QMap<QString, QString> ended{{QStringLiteral("/x/2"), QStringLiteral("ok/t")},
                                       {QStringLiteral("/x/2_result"), QStringLiteral("|g|0|s|1|h|9")}};
    bridge->onGetBatchUploadFileListState(true, QStringLiteral("request6"), {ended});
    ASSERT_EQ(functionCalls().size(), 1);
    EXPECT_FALSE(functionCalls().first().contains(QStringLiteral("queued")));
}

TEST_F(ScriptMethods, WithoutADialogLibraryNothingIsTransferred)
{
    runtime.libraryDir = directory.path();
    start();
    EXPECT_TRUE(call("callFileUploader", R"({"fileid":"1","filename":"a.b"})").isEmpty());
    call("callFileDownload", R"({"fileids":[{"id":"1","idDir":false}]})");
    EXPECT_TRUE(application->cloud.calls.isEmpty());
    const auto properties =
        cloudfiledialog::properties(cloudfiledialog::Kind::DownloadDirectory, QStringLiteral("/d"));
    EXPECT_EQ(properties.size(), 13);
    EXPECT_EQ(properties.value(QStringLiteral("allFilter")), QStringLiteral(" |*.xxx"));
}

TEST_F(ScriptMethods, TheAccountIsToldAsItIs)
{
    start();
    EXPECT_EQ(call("tavaCheckLogined"), json(R"({"logined":false,"userid":"","vltkey":""})"));
    EXPECT_EQ(call("getVlt_sid"), json(R"({"sid":""})"));
    call("openVirtualCloudDisk");
    call("registerCookieUpdateHandler", R"({"callback":"onLogin"})");
    NHelioUserInfo& user = application->cloud.user;
    user.userId = QStringLiteral("u1");
    user.sessionKey = QStringLiteral("k");
    bridge->notifyLoginStatus();
    user.loggedIn = true;
    bridge->notifyLoginStatus();
    call("openVirtualCloudDisk");
    EXPECT_EQ(call("tavaCheckLogined"), json(R"({"logined":true,"userid":"u1","vltkey":"k"})"));
    EXPECT_EQ(application->cloud.calls,
              (QStringList{QStringLiteral("login"), QStringLiteral("disk u1 cloudpage")}));
    const QStringList calls = functionCalls();
    ASSERT_EQ(calls.size(), 2);
    EXPECT_EQ(json(calls[0].mid(8).toUtf8()),
              json(R"({"act":"notifyLoginStatus","logined":0,"userid":"","vltkey":""})"));
    EXPECT_EQ(json(calls[1].mid(8).toUtf8()),
              json(R"({"act":"notifyLoginStatus","logined":1,"userid":"u1","vltkey":"k"})"));
}

TEST_F(ScriptMethods, RoamingCallsAreAnsweredEachOnItsOwn)
{
    start();
    call("getRoamingMode");
    call("getRoamingMode");
    EXPECT_TRUE(call("setRoamingMode").isEmpty());
    const auto& resolved = container->transport.resolved;
    bridge->OnGetRoamingMode(true, QStringLiteral("nobody's"), {});
    EXPECT_TRUE(resolved.empty());
    bridge->OnGetRoamingMode(true, QStringLiteral("request2"),
                             {{{QStringLiteral("roamingmode"), QStringLiteral("on")}}});
    bridge->OnGetRoamingMode(false, QStringLiteral("request1"), {});
    bridge->OnGetRoamingMode(true, QStringLiteral("request1"), {});
    bridge->OnSetRoamingMode(false, QStringLiteral("request3"), {});
    ASSERT_EQ(resolved.size(), 3U);
    EXPECT_EQ(resolved[0].callId, QStringLiteral("c2"));
    EXPECT_EQ(json(resolved[0].json), json(R"({"mode":"on"})"));
    EXPECT_EQ(json(resolved[1].json),
              json(R"({"callstatus":"error","errormsg":"rpc call getRoamingMode error","mode":"unknown"})"));
    EXPECT_EQ(json(resolved[2].json),
              json(R"({"callstatus":"error","errormsg":"rpc call setRoamingMode error","mode":"unknown"})"));
}

TEST_F(ScriptMethods, TheNetworkCheckAnswersOnce)
{
    HttpStub server;
    server.answer("/robots.txt", {200, "User-agent: *", {}});
    runtime.productConfig.insert(QStringLiteral("resolve/docs.test"), server.origin().mid(7));
    start();
    EXPECT_TRUE(call("checkNetwork", R"({"callback":"onNet"})").isEmpty());
    EXPECT_TRUE(call("checkNetwork").isEmpty());
    ASSERT_TRUE(waitUntil([&] { return server.count("/robots.txt") == 2 && !functionCalls().isEmpty(); }));
    server.answer("/robots.txt", {500, "", {}});
    call("checkNetwork", R"({"callback":"onNet"})");
    ASSERT_TRUE(waitUntil([&] { return functionCalls().size() == 2; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(functionCalls(), (QStringList{QStringLiteral("onNet {\"status\":\"true\"}"),
                                            QStringLiteral("onNet {\"status\":\"false\"}")}));
}

TEST_F(ScriptMethods, SwitchesDecideOnSendingAndParallelClosing)
{
    runtime.features.insert(QStringLiteral("SupportSendFileWindow"), true);
    start();
    EXPECT_EQ(call("isSupportSendFile"), json(R"({"result":true,"callstatus":"ok"})"));
    EXPECT_EQ(call("isSupportParallelCloseCollaboration"), json(R"({"result":false,"callstatus":"ok"})"));
    nreadonce::resetForTest();
    setItem(54887, R"({"parallelCloseCollaboration":true})");
    EXPECT_EQ(call("isSupportParallelCloseCollaboration"), json(R"({"result":true,"callstatus":"ok"})"));
    application->cloud.user.excludedFromParallelClose = true;
    EXPECT_EQ(call("isSupportParallelCloseCollaboration"), json(R"({"result":false,"callstatus":"ok"})"));
}

} // namespace
