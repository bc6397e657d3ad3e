#include "bridge/NHelioCloudDocsAsynJsObj.h"

#include "support/LogRecorder.h"
#include "support/ShellFixture.h"
#include "zeolite/NxJSApiEventHandler.h"

#include <QJsonDocument>
#include <QRegularExpression>
#include <QSignalSpy>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

class CloudDocsBridge : public ShellFixture
{
protected:
    void SetUp() override
    {
        ShellFixture::SetUp();
        start();
        bridge = new NHelioCloudDocsAsynJsObj(&container, &container, &browser);
    }

    /** The reply to a call; empty when none was delivered. */
    QJsonObject call(const QString& name)
    {
        container.transport.resolved.clear();
        container.transport.rejected.clear();
        bridge->fromJSAsynCall(
            QStringLiteral("{\"id\":\"c%1\",\"name\":\"%2\",\"args\":{}}").arg(++calls).arg(name));
        if (container.transport.resolved.empty())
            return {};
        return QJsonDocument::fromJson(container.transport.resolved.front().json).object();
    }

    FakeWebViewContainer container;
    FakeBrowserWidget browser;
    NHelioCloudDocsAsynJsObj* bridge = nullptr;
    int calls = 0;
};

TEST_F(CloudDocsBridge, AnswersItsVersion)
{
    EXPECT_EQ(call(s("clouddocsApiVersion")),
              (QJsonObject{{s("callstatus"), s("ok")}, {s("version"), s("1.0.0")}}));
}

TEST_F(CloudDocsBridge, SomeMethodsOnlyRaiseSignals)
{
    QSignalSpy reload(bridge, &NHelioCloudDocsAsynJsObj::sigReload);
    QSignalSpy offline(bridge, &NHelioCloudDocsAsynJsObj::sigShowOfflinePage);
    QSignalSpy home(bridge, &NHelioCloudDocsAsynJsObj::sigGotoHomepage);
    QSignalSpy closed(bridge, &NHelioCloudDocsAsynJsObj::sigClose);
    for (const char* name : {"jsReload", "jsReloadCef", "showOfflinePage", "gotoHomepage", "closeDialog",
                             "resize", "loginStateChanged"}) {
        EXPECT_TRUE(call(s(name)).isEmpty()) << name;
        EXPECT_TRUE(container.transport.rejected.empty()) << name;
    }
    EXPECT_EQ(reload.count(), 2);
    EXPECT_EQ(offline.count(), 1);
    EXPECT_EQ(home.count(), 1);
    EXPECT_EQ(closed.count(), 1);
}

TEST_F(CloudDocsBridge, SomeMethodsLeaveATrace)
{
    const LogRecorder log;
    for (const char* name : {"openFile", "openFileEx", "isSupportSendFile", "sendFile"}) {
        call(s(name));
        const QRegularExpression line(
            s("^info \\[NHelioCloudDocsAsynJsObj\\] <NHelioCloudDocsAsynJsObj::%1#\\d+>$").arg(s(name)),
            QRegularExpression::CaseInsensitiveOption);
        EXPECT_EQ(log.lines().filter(line).size(), 1) << name;
    }
}

TEST_F(CloudDocsBridge, HandlersDependOnBrowserAndSwitch)
{
    bridge->ensureHandlers();
    for (const char* name : {"quilldrive", "docs.dockmsg", "docs.print", "docs.sorrel"})
        EXPECT_EQ(bridge->findHandler(s(name)).first, s(name));
    for (const char* name : {"docs.storage", "docs.storage.info", "docs.storage.file", "webview.preload"})
        EXPECT_EQ(bridge->findHandler(s(name)).second, nullptr) << name;

    NHelioCloudDocsAsynJsObj bare(&container, &container, nullptr);
    bare.ensureHandlers();
    EXPECT_EQ(bare.findHandler(s("quilldrive")).second, nullptr);
    EXPECT_EQ(bare.findHandler(s("docs.dockmsg")).second, nullptr);
    EXPECT_NE(bare.findHandler(s("docs.print")).second, nullptr);
}

TEST_F(CloudDocsBridge, OtherSlotsAreNoMethods)
{
    for (const char* name : {"onSendFile", "onLoadFinished", "deleteLater", "setPage", "login",
                             "docs.print.deleteLater", "docs.nothing.at", "sigReload"}) {
        EXPECT_TRUE(call(s(name)).isEmpty()) << name;
        ASSERT_EQ(container.transport.rejected.size(), 1U) << name;
    }
}

TEST_F(CloudDocsBridge, RaisesPageEvents)
{
    bridge->onDragEnter({s("/tmp/a b.txt")});
    bridge->setOpenCooperationResult(true);
    const auto& events = container.transport.events;
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].name, s("ondragenter"));
    EXPECT_EQ(events[0].text, s(R"({"files":["/tmp/a b.txt"]})"));
    EXPECT_EQ(events[1].name, s("opencooperation"));
    EXPECT_EQ(events[1].text, s(R"({"result":"1"})"));
    EXPECT_TRUE(call(s("getOpenCooperationResult")).value(s("result")).toBool());
}

} // namespace
