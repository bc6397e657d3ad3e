#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioCommonJSAPI.h"
#include "nheliostat/framework/BrowserModule.h"
#include "nheliostat/framework/ShellApplication.h"
#include "support/FakeBrowserWidget.h"
#include "zeolite/ZeoliteHost.h"

#include <gmock/gmock.h>

#include <QJsonArray>
#include <QJsonObject>
#include <QSignalSpy>

#include <memory>

namespace {

using TextMap = QMap<QString, QString>;

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

std::string resultOf(void (NHelioCommonJSAPI::*method)(NxWebViewJSContext&), NHelioCommonJSAPI& api,
                     const QVariantMap& arguments = {})
{
    NxWebViewJSContext context;
    context.parse(s("method"), s("1"), arguments);
    (api.*method)(context);
    const Json::Value& reply = context.reply();
    return reply["callstatus"].asString() == "ok" ? reply["result"].asString()
                                                  : "error: " + reply["errormsg"].asString();
}

TEST(CommonScriptObject, PassesOnWhatTheWebApplicationReports)
{
    qRegisterMetaType<TextMap>("QMap<QString,QString>");
    FakeWebViewContainer container;
    NHelioCommonJSAPI api(&container);
    QSignalSpy fileReady(&api, &NHelioCommonJSAPI::sig_webFileReady);
    QSignalSpy shareReady(&api, &NHelioCommonJSAPI::sig_shareDlgReady);
    QSignalSpy menuReady(&api, &NHelioCommonJSAPI::sig_menuItemDataReady);

    const QJsonObject data = {{s("fileName"), s("a.docx")}, {s("fileId"), 1234567890123.0},
                              {s("readOnly"), true},        {s("nothing"), QJsonValue::Null},
                              {s("list"), QJsonArray{1}},   {s("object"), QJsonObject{}}};
    EXPECT_TRUE(api.reportFromScript(s("webFileReady"), data));
    ASSERT_EQ(fileReady.count(), 1);
    EXPECT_EQ(fileReady.first().first().value<TextMap>(), TextMap({{s("fileName"), s("a.docx")},
                                                                   {s("fileId"), s("1234567890123")},
                                                                   {s("readOnly"), s("true")}}));

    EXPECT_TRUE(api.reportFromScript(s("shareDlgReady"), {}));
    EXPECT_EQ(shareReady.count(), 1);
    EXPECT_TRUE(api.reportFromScript(s("menuItemDataReady"), data));
    EXPECT_EQ(menuReady.first().first().toJsonObject(), data);
    for (const char* name : {"", "webfileready", "unknown"})
        EXPECT_FALSE(api.reportFromScript(s(name), data)) << name;
    EXPECT_EQ(fileReady.count() + shareReady.count() + menuReady.count(), 3);
}

TEST(CommonScriptObject, AsksTheShell)
{
    FakeWebViewContainer container;
    NHelioCommonJSAPI alone(&container);
    EXPECT_EQ(resultOf(&NHelioCommonJSAPI::login, alone), "error: nobody can sign in");
    EXPECT_EQ(resultOf(&NHelioCommonJSAPI::getCurSkin, alone), "light");

    ShellApplication::Setup setup;
    setup.dark = true;
    setup.user.loggedIn = true;
    setup.user.sessionKey = s("key");
    setup.user.cacheRoot = s("/cache");
    ShellApplication application(setup);
    QSignalSpy loginRequested(&application, &ShellApplication::loginRequested);
    NHelioCommonJSAPI api(&container);
    EXPECT_EQ(resultOf(&NHelioCommonJSAPI::login, api), "");
    EXPECT_EQ(loginRequested.count(), 1);
    EXPECT_EQ(resultOf(&NHelioCommonJSAPI::logout, api), "");
    QCoreApplication::processEvents();
    EXPECT_FALSE(application.user().loggedIn);
    EXPECT_TRUE(application.user().sessionKey.isEmpty());
    EXPECT_EQ(application.user().cacheRoot, s("/cache"));
    EXPECT_EQ(resultOf(&NHelioCommonJSAPI::getCurSkin, api), "dark");
    EXPECT_THAT(resultOf(&NHelioCommonJSAPI::getSkinIcon, api, {{s("name"), s("add")}}),
                testing::StartsWith("data:image/svg+xml;base64,"));
    for (const char* name : {"", "unknown", "../close-dark"})
        EXPECT_THAT(resultOf(&NHelioCommonJSAPI::getSkinIcon, api, {{s("name"), s(name)}}),
                    testing::StartsWith("error: no icon"));
}

TEST(CommonScriptObject, OpensWebAddressesOnly)
{
    FakeWebViewContainer container;
    NHelioCommonJSAPI api(&container);
    QSignalSpy requested(&api, &NHelioCommonJSAPI::openUrlRequested);
    for (const char* url : {"", "x", "file:///etc/passwd", "javascript:alert(1)", "https://"})
        EXPECT_THAT(resultOf(&NHelioCommonJSAPI::openUrlTava, api, {{s("url"), s(url)}}),
                    testing::StartsWith("error: not a web address"))
            << url;
    EXPECT_EQ(requested.count(), 0);
    EXPECT_EQ(resultOf(&NHelioCommonJSAPI::openUrlTava, api, {{s("url"), s("https://example.test/?a=1")}}),
              "");
    EXPECT_EQ(requested.first().first().toString(), s("https://example.test/?a=1"));
}

TEST(CommonScriptObject, RaisesThePageEventForANewName)
{
    FakeWebViewContainer container;
    NHelioCommonJSAPI api(&container);
    api.onNotifyNameChange(s("a \"b\".docx"));
    ASSERT_EQ(container.transport.events.size(), 1U);
    EXPECT_EQ(container.transport.events[0].name, s("namechange"));
    EXPECT_EQ(container.transport.events[0].text, s(R"({"name":"a \"b\".docx"})"));
}

TEST(PageHandlers, AreMadeByNameWhileTheBrowserLives)
{
    zeolite::Setup setup;
    setup.domains.insert(s("drive"), s("https://drive.example.test/"));
    FakeWebViewContainer container;
    NHelioCommonJSAPI api(&container);
    auto browser = std::make_unique<FakeBrowserWidget>();
    NHelioBrowserPageProxy proxy(browser.get());
    EXPECT_EQ(proxy.generateHandler(s("Unknown"), &api, &api), nullptr);
    QObject* made = proxy.generateHandler(s("NHelioBrowserDocDriveApiHandler"), &api, &api);
    auto* handler = qobject_cast<NxWebViewJSApiHandler*>(made);
    ASSERT_NE(handler, nullptr);
    EXPECT_EQ(handler->parent(), &api);
    api.setHandler(s("quilldrive"), handler);
    const QString call = s(R"({"id":"1","name":"quilldrive.getDriveInfo"})");
    api.fromJSAsynCall(call);
    const ZeoliteHost services(setup);
    api.fromJSAsynCall(call);
    ASSERT_EQ(container.transport.resolved.size(), 2U);
    EXPECT_EQ(container.transport.resolved[0].json,
              R"({"callstatus":"error","errormsg":"no drive in this deployment"})");
    EXPECT_EQ(container.transport.resolved[1].json,
              R"({"callstatus":"ok","result":"https://drive.example.test"})");
    browser.reset();
    EXPECT_EQ(proxy.generateHandler(s("NHelioBrowserDocDriveApiHandler"), &api, &api), nullptr);
}

TEST(PageHandlers, TheDockPanelsKnowThePage)
{
    NHelioDockPanelJsHandler handler(nullptr);
    handler.notifyPageLoadFinished(true);
    handler.updateWebFileInfo({{s("fileName"), s("ä.docx")}});
    NxWebViewJSContext context;
    handler.getPageInfo(context);
    EXPECT_TRUE(context.reply()["loaded"].asBool());
    EXPECT_EQ(context.reply()["fileInfo"]["fileName"].asString(), "ä.docx");
}

TEST(BrowserModule, CallsWhatIsRegistered)
{
    const QString name = s("openFileWithQuillDrive");
    EXPECT_FALSE(helioBrowserModuleCallProxy(name, {}, nullptr));
    nheliostat::host::setBrowserModuleFunction(name, [](const QVariant& argument, QVariant* result) {
        *result = argument;
        return argument.toInt() == 7;
    });
    QVariant result;
    EXPECT_TRUE(helioBrowserModuleCallProxy(name, 7, &result));
    EXPECT_EQ(result.toInt(), 7);
    EXPECT_FALSE(helioBrowserModuleCallProxy(name, 8, &result));
    nheliostat::host::setBrowserModuleFunction(name, {});
    EXPECT_FALSE(helioBrowserModuleCallProxy(name, 7, &result));
}

} // namespace
