#include "proxy/NPackageRecords.h"
#include "server/DocsRequests.h"
#include "server/ReplyParsers.h"
#include "server/RequestOverride.h"
#include "support/ServicesFixture.h"

#include <QJsonDocument>

namespace {

QJsonObject json(const char* text)
{
    return QJsonDocument::fromJson(text).object();
}

TEST(DocsRequests, PathsCarryWhatTheServerNeeds)
{
    using namespace docsrequests;
    const QString id = QStringLiteral("12");
    EXPECT_EQ(versionCheckPath(id, QStringLiteral("w")),
              QStringLiteral("/api/v3/office/prefetch/vcs/12?office_type=w"));
    for (const char* key : {"12a", "ab", "12-3"})
        EXPECT_FALSE(versionCheckPath(QLatin1String(key), QStringLiteral("w")).contains(u'?')) << key;
    EXPECT_EQ(withStartTime(officeConfigPath(id, true), QStringLiteral("7")),
              QStringLiteral("/office-config/12?part=file_info,config,ssr&startTime=7"));
    EXPECT_EQ(withStartTime(officeConfigPath(id, false), QString()),
              QStringLiteral("/office-config/12?part=file_info,font_name_map,config,plugin_config"));
    EXPECT_EQ(preopenPath(id, QStringLiteral("word")), QStringLiteral("/api/v3/office/file/12/preopen/word"));
    EXPECT_EQ(startTimeOf(QStringLiteral("https://d.test/p/1?startTime=5")), QStringLiteral("5"));
    EXPECT_TRUE(startTimeOf(QStringLiteral("https://d .test:x/?startTime=5")).isEmpty());
}

TEST(DocsRequests, BodiesNameTheVersionOnlyWhereItMayBeUsed)
{
    using namespace docsrequests;
    EXPECT_EQ(packageInfoBody(QStringLiteral("word"), {}, 0), R"([{"office_type":"word"}])");
    EXPECT_EQ(packageInfoBody(QStringLiteral("word"), QStringLiteral("1.2"), 5),
              R"([{"build_time":5,"front_ver":"1.2","office_type":"word"}])");
    EXPECT_EQ(preopenBody(QStringLiteral("1.2"), false, QStringLiteral("c")),
              json(R"({"front_ver":"1.2","connid":"c"})"));
    EXPECT_EQ(preopenBody(QStringLiteral("1.2"), true, QStringLiteral("c")), json(R"({"connid":"c"})"));
}

TEST(RequestOverride, ChangesEveryPartOfTheRequest)
{
    DocsRequest request;
    request.url = QStringLiteral("https://d.test/a?part=x,y");
    request.headers = {{QStringLiteral("Accept"), QByteArrayLiteral("old")}};
    request.body = json(R"({"connid": "c", "front_ver": "1"})");
    request.cookies = QStringLiteral("s=1");
    requestoverride::apply(json(R"({"query": {"b": "2 3"}, "headers": {"Accept": "new", "X-Extra": "1"},
                                    "body": {"front_ver": {"deep": true}}, "cookie": {"z": "9", "k": "8"}})"),
                           request);
    requestoverride::writeCookies(request);
    EXPECT_EQ(request.url, QStringLiteral("https://d.test/a?part=x,y&b=2%203"));
    EXPECT_EQ(request.headers.value(QStringLiteral("Accept")).toByteArray(), "new");
    EXPECT_EQ(request.headers.value(QStringLiteral("X-Extra")).toByteArray(), "1");
    EXPECT_EQ(request.body, json(R"({"connid": "c", "front_ver": {"deep": true}})"));
    EXPECT_EQ(request.headers.value(QStringLiteral("Cookie")).toByteArray(), "s=1;k=8;z=9;");
    EXPECT_EQ(request.headers.value(QStringLiteral("X-Cookie")).toByteArray(), "s=1;k=8;z=9;");
}

TEST(RequestOverride, AnotherShapeChangesNothing)
{
    for (const char* changes :
         {"{}", R"({"query": [1], "headers": "x", "body": 3, "cookie": null})", R"({"cookie": {}})"}) {
        DocsRequest request;
        request.url = QStringLiteral("https://d.test/a?b");
        request.cookies = QStringLiteral("s=1");
        requestoverride::apply(json(changes), request);
        EXPECT_EQ(request.url, QStringLiteral("https://d.test/a?b")) << changes;
        EXPECT_TRUE(request.headers.isEmpty() && request.body.isEmpty()) << changes;
        EXPECT_EQ(request.cookies, QStringLiteral("s=1")) << changes;
    }
    EXPECT_EQ(requestoverride::memberName(QStringLiteral("/office-config/:id")),
              QStringLiteral("L29mZmljZS1jb25maWcvOmlk"));
}

TEST(ReplyParsers, BodiesOfAnotherShapeGiveEmptyMembers)
{
    NCloudDocsRequestTaskResult result;
    result.fileId = QStringLiteral("f");
    result.frontVer = QStringLiteral("1");
    for (const char* body :
         {"", "nonsense", "[]", "{}", R"({"window.__VLTENV__": {}, "client_version": 3, "config": [],
                                                            "office_type": {}})"}) {
        result.data = body;
        EXPECT_TRUE(replyparsers::parseOpenFileResult(result).fileId.isEmpty()) << body;
        EXPECT_TRUE(replyparsers::parseVcsResult(result).clientVersion.isEmpty()) << body;
        EXPECT_TRUE(replyparsers::parseVcsResult(result).officeType.isEmpty()) << body;
        EXPECT_TRUE(replyparsers::parseEnvConfigResult(result).frontVer.isEmpty()) << body;
    }
    result.data = R"({"window.__VLTENV__": {"file_version": "9"}, "client_version": "2", "office_type": "w",
                      "config": {"front_ver": "3"}})";
    const auto opened = replyparsers::parseOpenFileResult(result);
    EXPECT_EQ((QStringList{opened.fileId, opened.fileVersion, opened.frontVer}).join(u' '),
              QStringLiteral("f 9 1"));
    EXPECT_EQ(replyparsers::parseVcsResult(result).officeType, QStringLiteral("w"));
    const auto env = replyparsers::parseEnvConfigResult(result);
    EXPECT_EQ((QStringList{env.frontVer, env.sentFrontVer}).join(u' '), QStringLiteral("3 1"));
}

struct PackageInfoCase
{
    const char* body;
    int missTag; //!< -1: not written
    qint64 expireTime;
    const char* version;
    bool mustUpgrade;
};

TEST(ReplyParsers, PackageInformationIsTakenForThePackageThatItNames)
{
    const PackageInfoCase cases[] = {
        {"no json", -1, 0, "", false},
        {R"({"result": 1})", -1, 0, "", false},
        {R"({"result": "MissedTag", "errno": 10000})", 1, 0, "", false},
        {R"({"result": "MissedTag", "errno": "10000"})", 0, 0, "", false},
        {R"({"result": "ok", "errno": 10000, "data": {}})", 0, 0, "", false},
        {R"({"result": "failed", "data": [{"office_type": "word", "must_upgrade": true}]})", 0, 0, "", false},
        {R"({"result": "ok", "data": [{"office_type": "vs", "must_upgrade": true}]})", 0, 0, "", false},
        {R"({"result": "ok", "data": [7, {"office_type": "word", "must_upgrade": true},
             {"office_type": "word", "front_data": {"expire_time": 5, "front_ver": "2"}}]})",
         0, 0, "", true},
        {R"({"result": "ok", "data": [{"office_type": "word", "front_data": {"expire_time": 5.9, "front_ver": "2"}}]})",
         0, 5, "2", false},
        {R"({"result": "ok", "data": [{"office_type": "word", "front_data": {"expire_time": "5", "front_ver": "2"}}]})",
         0, 0, "", false},
    };
    for (const PackageInfoCase& expected : cases) {
        const auto reply = replyparsers::parsePackageInfo(expected.body, QStringLiteral("word"));
        EXPECT_EQ(reply.userMissTag ? int(*reply.userMissTag) : -1, expected.missTag) << expected.body;
        EXPECT_EQ(reply.expireTime, expected.expireTime) << expected.body;
        EXPECT_EQ(reply.serverFrontVer, QLatin1String(expected.version)) << expected.body;
        EXPECT_EQ(reply.mustUpgrade, expected.mustUpgrade) << expected.body;
    }
}

class PackageInfoRecords : public ServicesFixture
{
};

TEST_F(PackageInfoRecords, TheExpiryIsOfTheServersVersionAndTheUpgradeOfTheSentOne)
{
    start();
    replyparsers::handleResPckInfoResponse(
        QStringLiteral("w"), R"({"result": "ok", "data": [{"office_type": "word", "must_upgrade": true,
                                 "front_data": {"expire_time": 5, "front_ver": "2"}}]})",
        QStringLiteral("1"));
    const QString type = QStringLiteral("w");
    EXPECT_EQ(npackagerecords::expireTime(type, QStringLiteral("2")), 5);
    EXPECT_EQ(npackagerecords::expireTime(type, QStringLiteral("1")), 0);
    EXPECT_TRUE(npackagerecords::mustUpgrade(type, QStringLiteral("1")));
    EXPECT_FALSE(npackagerecords::mustUpgrade(type, QStringLiteral("2")));
}

} // namespace
