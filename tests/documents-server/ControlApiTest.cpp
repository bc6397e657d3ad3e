#include "service/DocumentsService.h"

#include <gmock/gmock.h>

#include <QJsonArray>
#include <QJsonDocument>

#include "support/TemporarySite.h"

namespace documents {
namespace {

class ControlApiTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_FALSE(store.open()); }

    Answer ask(const QByteArray& method, const QByteArray& target, const QByteArray& body = {})
    {
        HttpRequest request;
        request.method = method;
        request.target = target;
        request.body = body;
        return service.answer(request);
    }
    int put(const QByteArray& resource, const QByteArray& body)
    {
        return ask("PUT", "/_control/" + resource, body).reply.status;
    }

    TemporarySite place;
    DocumentStore store{place.documents(), [] { return 0; }};
    LinkShaper shaper;
    RequestLog log;
    DocumentsService service{store, place.site(), [] { return 0; }, shaper, log};
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
          "{\"vs\":{\"front_ver\":\"1\"},\"word\":{\"expire_time\":\"5\"}}"})
        EXPECT_EQ(put("versions", wrong), 400) << wrong;
    EXPECT_TRUE(info("word").contains("9.9")) << "a refused change changes nothing";
    EXPECT_EQ(put("versions", "{}"), 200);
    EXPECT_TRUE(info("word").contains("2.5.0"));
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

TEST_F(ControlApiTest, theLogShowsOtherPeoplesRequests)
{
    log.record({12, "GET", "/p/1", 404, 99, "agent", "a=1"});
    log.record({13, "GET", "/_control/log", 200, 1, {}, {}});
    const auto reply = ask("GET", "/_control/log").reply;
    EXPECT_EQ(
        reply.body,
        QByteArray(
            "{\"requests\":[{\"bytes\":99,\"cookie\":\"a=1\",\"method\":\"GET\",\"status\":404,\"t\":12,"
            "\"target\":\"/p/1\",\"userAgent\":\"agent\"}],\"result\":\"ok\"}"));
    for (int i = 0; i < 1500; ++i)
        log.record({i, "GET", "/", 200, 1, {}, {}});
    EXPECT_EQ(log.recent().size(), 1000);
    EXPECT_EQ(log.recent().last().toObject().value(QLatin1String("t")), 1499);
    EXPECT_EQ(ask("PUT", "/_control/log").reply.status, 405);
    EXPECT_EQ(ask("GET", "/_control/shaping").reply.status, 405);
    EXPECT_EQ(put("nothing", "{}"), 404);
}

} // namespace
} // namespace documents
