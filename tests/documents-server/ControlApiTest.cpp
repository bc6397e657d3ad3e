#include <QJsonArray>

#include "support/ServiceTest.h"

namespace documents {
namespace {

class ControlApiTest : public ServiceTest
{
protected:
    int put(const QByteArray& resource, const QByteArray& body)
    {
        return ask("PUT", "/_control/" + resource, body).reply.status;
    }
};

TEST_F(ControlApiTest, shapingChangesWhatIsNamed)
{
    EXPECT_EQ(put("shaping", "{\"rttMs\":40,\"kbps\":5000}"), 200);
    EXPECT_EQ(put("shaping", "{\"kbps\":100}"), 200);
    EXPECT_EQ(shaper.settings().rttMs, 40);
    EXPECT_EQ(shaper.settings().kbps, 100);
    for (const char* wrong : {"", "[]", "{\"rttMs\":-1}", "{\"rttMs\":1.5}", "{\"kbps\":\"1\"}",
                              "{\"kbps\":1e12}", "{\"kbps\":7,\"x\":1}"})
        EXPECT_EQ(put("shaping", wrong), 400) << wrong;
    EXPECT_EQ(shaper.settings().kbps, 100);
}

TEST_F(ControlApiTest, versionsReplaceTheSitesOwn)
{
    const auto info = [this](const QByteArray& package) {
        const QByteArray body = "[{\"office_type\":\"" + package + "\"}]";
        return ask("POST", "/api/quill/office/prefetch/config", body).reply.body;
    };
    EXPECT_EQ(put("versions", "{\"word\":{\"front_ver\":\"9.9\",\"expire_time\":5,\"must_upgrade\":true}}"),
              200);
    EXPECT_EQ(info("word"),
              QByteArray("{\"data\":[{\"front_data\":{\"expire_time\":5,\"front_ver\":\"9.9\"},"
                         "\"must_upgrade\":true,\"office_type\":\"word\"}],\"result\":\"ok\"}"));
    EXPECT_TRUE(info("vs").contains("2.5.0"));
    EXPECT_TRUE(ask("GET", "/office-config/100001").reply.body.contains("\"front_ver\":\"9.9\""));

    for (const char* wrong :
         {"{\"w\":{}}", "{\"word\":1}", "{\"word\":{\"front_ver\":1}}", "{\"word\":{\"x\":1}}",
          "{\"vs\":{\"front_ver\":\"1\"},\"word\":{\"expire_time\":\"5\"}}", "{\"files\":[]}",
          "{\"files\":{\"x\":{}}}", "{\"word\":{\"front_ver\":\"4\"},\"files\":{\"1\":2}}"})
        EXPECT_EQ(put("versions", wrong), 400) << wrong;
    EXPECT_TRUE(info("word").contains("9.9")) << "a refused change changes nothing";
    EXPECT_EQ(put("versions", "{}"), 200);
    EXPECT_TRUE(info("word").contains("2.5.0"));

    const auto versionOf = [this](const QByteArray& id) {
        const QJsonObject config = json(ask("GET", "/office-config/" + id + "?part=config"));
        const std::string version = text(ask("GET", "/api/v3/office/prefetch/vcs/" + id), "client_version");
        EXPECT_EQ(config.value(QLatin1String("config")).toObject().value(QLatin1String("front_ver")),
                  QString::fromStdString(version));
        return version;
    };
    ASSERT_TRUE(store.create(QStringLiteral("w"), {}));
    EXPECT_EQ(put("versions", R"({"word":{"front_ver":"3.0"},"files":{"100001":{"front_ver":"2.9"}}})"), 200);
    EXPECT_EQ(versionOf("100001"), "2.9");
    EXPECT_EQ(versionOf("100003"), "3.0");
    EXPECT_EQ(versionOf("100002"), "2.5.0") << "another kind of document";
}

TEST_F(ControlApiTest, faultsSpoilTheAnswersUnderTheirPrefix)
{
    EXPECT_EQ(put("fault", "{\"/api/\":{\"status\":503},"
                           "\"/api/v3/office/files\":{\"body\":\"garbage\",\"delayMs\":5,\"cutAfter\":3},"
                           "\"/office-config/100001?part=ssr\":{\"reset\":true}}"),
              200);
    EXPECT_EQ(ask("GET", "/api/v3/office/prefetch/vcs/100001").reply.status, 503);
    const Answer spoilt = ask("GET", "/api/v3/office/files");
    EXPECT_EQ(spoilt.reply.status, 200) << "the longest prefix decides";
    EXPECT_EQ(spoilt.reply.body, QByteArray("garbage"));
    EXPECT_EQ(spoilt.delay.count(), 5);
    EXPECT_EQ(spoilt.cutAfter, 3);
    EXPECT_TRUE(ask("GET", "/office-config/100001?part=ssr").reset);
    EXPECT_FALSE(ask("GET", "/office-config/100001").reset);

    const QByteArray change = "{\"base_version\":1,\"content\":{}}";
    EXPECT_EQ(ask("PUT", "/api/v3/office/file/100001/content", change).reply.status, 503);
    EXPECT_EQ(store.load(QStringLiteral("100001"))->version, 1) << "a request that fails has no effect";

    for (const char* wrong : {"{\"api\":{}}", "{\"/_control/fault\":{}}", "{\"/a\":{\"status\":99}}",
                              "{\"/a\":{\"cutAfter\":-1}}", "{\"/a\":{\"delay\":1}}", "{\"/a\":true}"})
        EXPECT_EQ(put("fault", wrong), 400) << wrong;
    EXPECT_EQ(put("fault", "{\"/\":{\"status\":500}}"), 200);
    EXPECT_EQ(put("fault", "{}"), 200) << "a fault never closes the way back";
    EXPECT_EQ(ask("GET", "/api/v3/office/files").reply.status, 200);
}

TEST_F(ControlApiTest, faultsChangeWhatIsSentAndRunOut)
{
    EXPECT_EQ(put("fault", R"({"/p/":{"status":302,"location":"/elsewhere","times":2},)"
                           R"("/static/":{"size":50000000,"body":"start"}})"),
              200);
    EXPECT_EQ(header(ask("GET", "/p/100001").reply, "Location"), QByteArray("/elsewhere"));
    for (const int status : {302, 200})
        EXPECT_EQ(ask("GET", "/p/100001").reply.status, status);
    const HttpReply large = ask("GET", "/static/app.css").reply;
    EXPECT_EQ(large.body.size(), 50'000'000);
    EXPECT_TRUE(large.body.startsWith("start."));
    EXPECT_EQ(header(large, "ETag"), QByteArray()) << "nothing that a cache could keep";
    EXPECT_EQ(header(large, "Cache-Control"), QByteArray("no-store"));
    for (const char* wrong : {R"({"/a":{"location":"x\r\ny"}})", R"({"/a":{"location":""}})",
                              R"({"/a":{"size":1e12}})", R"({"/a":{"times":0}})"})
        EXPECT_EQ(put("fault", wrong), 400) << wrong;
}

TEST_F(ControlApiTest, documentsAreForUsersWithASession)
{
    place.add("site/signin.html", "please sign in");
    ASSERT_FALSE(drive.open());
    const QByteArrayList api = {"/api/v3/office/files", "/office-config/100001",
                                "/api/v1/drive/groups/0/folders/0"};
    const QByteArrayList pages = {"/p/100001", "/l/100001", "/office/new/w?officeType=w"};
    const auto expectAll = [&](int status, const char* user) {
        cookie = user;
        for (const QByteArray& target : api + pages)
            EXPECT_EQ(ask("GET", target).reply.status, status) << target.constData() << user;
        EXPECT_EQ(ask("POST", "/api/v3/office/file/100001/preopen/word", "{}").reply.status, status) << user;
        EXPECT_EQ(ask("GET", "/").reply.status, 200) << user;
        EXPECT_EQ(ask("GET", "/static/app.css").reply.status, 200) << user;
        EXPECT_EQ(ask("GET", "/api/v3/office/prefetch/vcs/100001").reply.status, 200) << user;
        EXPECT_NE(ask("GET", "/api/v3/office/package/quillword").reply.status, 401) << user;
    };
    for (const char* nobody : {"", "vlt_sid=", "xvlt_sid=anna", "a=vlt_sid", "vlt_sid"})
        expectAll(401, nobody);
    EXPECT_EQ(text(ask("GET", api.first()), "result"), "userNotLogin");
    const HttpReply page = ask("GET", pages.first()).reply;
    EXPECT_EQ(page.body, QByteArray("please sign in"));
    EXPECT_EQ(header(page, "Cache-Control"), QByteArray("no-store"));
    EXPECT_EQ(header(page, "ETag"), QByteArray());
    HttpRequest upload;
    upload.method = "PUT";
    upload.target = "/api/v1/drive/uploads/1?offset=0";
    EXPECT_EQ(service.receive(upload).refusal->reply.status, 401);

    EXPECT_EQ(put("sessions", R"({"remove":["anna"]})"), 200);
    expectAll(401, "vlt_sid=anna");
    expectAll(200, "a=1; vlt_sid=bert");
    expectAll(200, "vlt_sid=anna; vlt_sid=bert");
    EXPECT_EQ(put("sessions", R"({"add":["anna"]})"), 200);
    expectAll(200, "vlt_sid=anna");
    for (const char* wrong : {R"({"add":"anna"})", R"({"add":[""]})", R"({"add":[1]})", R"({"drop":[]})"})
        EXPECT_EQ(put("sessions", wrong), 400) << wrong;
}

TEST(UserSessions, namedOnesAreTheOnlyOnes)
{
    UserSessions sessions({QStringLiteral("anna")});
    EXPECT_TRUE(sessions.accepts("vlt_sid=anna"));
    EXPECT_FALSE(sessions.accepts("vlt_sid=bert"));
    EXPECT_FALSE(sessions.change({{QStringLiteral("remove"), QJsonArray{QStringLiteral("anna")}},
                                  {QStringLiteral("add"), QJsonArray{QStringLiteral("bert")}}}));
    EXPECT_FALSE(sessions.accepts("vlt_sid=anna"));
    EXPECT_TRUE(sessions.accepts("vlt_sid=bert"));
}

TEST_F(ControlApiTest, theLogShowsOtherPeoplesRequests)
{
    log.record({12,
                "POST",
                "/p/1",
                404,
                99,
                {{"User-Agent", "agent"},
                 {"Cookie", "a=1; vlt_sid=secret;vltua=; weboffice_branch=b"},
                 {"Origin", "o"}},
                loggedBody("POST", "text")});
    log.record({13, "GET", "/_control/log", 200, 1});
    log.record({14, "GET", "/p/2", 200, 1, {{"X-Cookie", "vlt_sid=secret"}}, loggedBody("GET", "text")});
    const QJsonObject reply = json(ask("GET", "/_control/log"));
    EXPECT_EQ(reply.value(QLatin1String("last")), 2);
    const QJsonArray requests = reply.value(QLatin1String("requests")).toArray();
    ASSERT_EQ(requests.size(), 2);
    EXPECT_EQ(
        QJsonDocument(requests.at(0).toObject()).toJson(QJsonDocument::Compact),
        QByteArray(
            R"({"body":"text","bytes":99,"cookie":"a=1; vlt_sid=*; vltua=*; weboffice_branch=*",)"
            R"("cookies":["vlt_sid","weboffice_branch"],)"
            R"("headers":{"cookie":"a=1; vlt_sid=*; vltua=*; weboffice_branch=*","origin":"o","user-agent":"agent"},)"
            R"("method":"POST","origin":"o","seq":1,"status":404,"t":12,"target":"/p/1",)"
            R"("userAgent":"agent"})"));
    EXPECT_EQ(requests.at(1).toObject().value(QLatin1String("body")), QString());
    EXPECT_EQ(QJsonDocument(requests.at(1).toObject()).toJson().indexOf("secret"), -1);
    EXPECT_EQ(loggedBody("POST", QByteArray(5000, 'x')).size(), 4096);

    for (int i = 0; i < 1500; ++i)
        log.record({i, "GET", "/", 200, 1});
    EXPECT_EQ(log.recent().size(), 1000);
    EXPECT_EQ(log.recent().first().toObject().value(QLatin1String("seq")), 503);
    const auto since = [this](const QByteArray& query) {
        return json(ask("GET", "/_control/log" + query)).value(QLatin1String("requests")).toArray();
    };
    ASSERT_EQ(since("?since=1501").size(), 1);
    EXPECT_EQ(since("?since=1501").at(0).toObject().value(QLatin1String("t")), 1499);
    EXPECT_EQ(since("?since=1502").size(), 0);
    EXPECT_EQ(ask("GET", "/_control/log?since=x").reply.status, 400);
    EXPECT_EQ(ask("PUT", "/_control/log").reply.status, 405);
    EXPECT_EQ(ask("GET", "/_control/shaping").reply.status, 405);
    EXPECT_EQ(put("nothing", "{}"), 404);
}

} // namespace
} // namespace documents
