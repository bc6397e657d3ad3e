#include <QJsonArray>

#include "support/ServiceTest.h"

namespace documents {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

using DocumentsServiceTest = ServiceTest;

TEST_F(DocumentsServiceTest, pagesLeadToTheirFiles)
{
    const struct
    {
        const char* target;
        int status;
        const char* body;
    } cases[] = {
        {"/", 200, "home"},
        {"/home", 200, "home"},
        {"/secret?x=1", 200, "home"},
        {"http://docs.skyleaf.test/recent", 200, "home"},
        {"/p/100001", 200, "text page"},
        {"/l/100002", 200, "table page"},
        {"/p/100002/", 200, "table page"},
        {"/p/100001?officeType=s", 200, "table page"},
        {"/p/100001?officeType=nonsense", 200, "text page"},
        {"/office/new/w", 200, "text page"},
        {"/hybrid/weboffice-static/js/app.js", 200, "script"},
        {"/static/app.css", 200, "style"},
        {"/p/424242", 404, "There is no document &quot;424242&quot;."},
        {"/p/424242?officeType=w", 404, "There is no document"},
        {"/p/%3Cscript%3E", 404, "&lt;script&gt;"},
        {"/office/new/p", 404, "index-p.html"},
        {"/office/new/zz", 404, "There is no kind of document"},
        {"/favicon.ico", 404, "favicon.ico"},
        {"/static/none.js", 404, "none.js"},
        {"/%zz", 400, "malformed"},
        {"nonsense", 400, "malformed"},
        {"/a%00b", 400, "malformed"},
    };
    for (const auto& entry : cases) {
        const HttpReply reply = ask("GET", entry.target).reply;
        EXPECT_EQ(reply.status, entry.status) << entry.target;
        EXPECT_THAT(reply.body.toStdString(), HasSubstr(entry.body)) << entry.target;
    }
    EXPECT_THAT(ask("GET", "/p/424242").reply.contentType.toStdString(), StartsWith("text/html"));
}

TEST_F(DocumentsServiceTest, aDamagedDocumentIsSaidToBeDamaged)
{
    place.add("documents/100001.json", "{");
    EXPECT_EQ(ask("GET", "/p/100001").reply.status, 500);
    EXPECT_EQ(text(ask("GET", "/office-config/100001"), "result"), "DocumentDamaged");
}

TEST_F(DocumentsServiceTest, errorsOfTheApiAreJson)
{
    const struct
    {
        const char* method;
        const char* target;
        const char* body;
        int status;
        const char* result;
    } cases[] = {
        {"GET", "/api/v3/office/nothing", "", 404, "NotFound"},
        {"GET", "/_control", "", 404, "NotFound"},
        {"DELETE", "/api/v3/office/files", "", 405, "MethodNotAllowed"},
        {"GET", "/api/v3/office/file/100001/preopen/word", "", 405, "MethodNotAllowed"},
        {"POST", "/office-config/100001", "", 405, "MethodNotAllowed"},
        {"POST", "/api/v3/office/file/100001/preopen/vs", "{}", 404, "NotFound"},
        {"POST", "/api/v3/office/file/424242/preopen/word", "{}", 404, "NotFound"},
        {"POST", "/api/v3/office/file/100001/preopen/word", "", 400, "BadRequest"},
        {"POST", "/api/v3/office/file/100001/preopen/word", "[]", 400, "BadRequest"},
        {"PUT", "/api/v3/office/file/100001/content", "{\"content\":{}}", 400, "BadRequest"},
        {"PUT", "/api/v3/office/file/100001/content", "{\"base_version\":1}", 400, "BadRequest"},
        {"PUT", "/api/v3/office/file/100001/content", "{\"base_version\":1,\"content\":\"\xff\"}", 400,
         "BadRequest"},
        {"PUT", "/api/v3/office/file/..%2F1/content", "{\"base_version\":1,\"content\":{}}", 404, "NotFound"},
        {"POST", "/api/v3/office/files", "{\"officeType\":\"zz\"}", 400, "BadRequest"},
        {"POST", "/api/v3/office/files", "{\"officeType\":\"w\",\"name\":7}", 400, "BadRequest"},
        {"GET", "/office-config/424242?part=config", "", 404, "NotFound"},
        {"GET", "/api/v3/office/prefetch/vcs/abc", "", 404, "NotFound"},
        {"POST", "/api/quill/office/prefetch/config", "{}", 400, "BadRequest"},
    };
    for (const auto& entry : cases) {
        const Answer reply = ask(entry.method, entry.target, entry.body);
        EXPECT_EQ(reply.reply.status, entry.status) << entry.target << ' ' << entry.body;
        EXPECT_EQ(text(reply, "result"), entry.result) << entry.target << ' ' << entry.body;
        EXPECT_FALSE(text(reply, "msg").empty());
    }
    EXPECT_EQ(header(ask("DELETE", "/api/v3/office/files").reply, "Allow"), QByteArray("GET, HEAD, POST"));

    QByteArray nested(5000, '[');
    EXPECT_EQ(ask("POST", "/api/quill/office/prefetch/config", nested).reply.status, 400);
}

TEST_F(DocumentsServiceTest, opensSavesAndListsADocument)
{
    const Answer opened = ask("POST", "/api/v3/office/file/100001/preopen/word", "{\"connid\":\"c1\"}");
    ASSERT_EQ(opened.reply.status, 200);
    const QJsonObject expected{{QStringLiteral("file_id"), QStringLiteral("100001")},
                               {QStringLiteral("file_version"), QStringLiteral("1")},
                               {QStringLiteral("file_name"), QStringLiteral("Welcome.docx")},
                               {QStringLiteral("office_type"), QStringLiteral("w")},
                               {QStringLiteral("connid"), QStringLiteral("c1")},
                               {QStringLiteral("front_ver"), QStringLiteral("2.5.0")}};
    EXPECT_EQ(json(opened).value(QLatin1String("window.__VLTENV__")).toObject(), expected);
    EXPECT_EQ(json(opened).value(QLatin1String("content")), store.load(QStringLiteral("100001"))->content);

    const QByteArray change = "{\"base_version\":1,\"content\":{\"type\":\"doc\"}}";
    EXPECT_EQ(
        json(ask("PUT", "/api/v3/office/file/100001/content", change)).value(QLatin1String("file_version")),
        2);
    const Answer conflict = ask("PUT", "/api/v3/office/file/100001/content", change);
    EXPECT_EQ(conflict.reply.status, 409);
    EXPECT_EQ(text(conflict, "result"), "VersionConflict");
    EXPECT_EQ(json(conflict).value(QLatin1String("file_version")), 2);

    const Answer created = ask("POST", "/api/v3/office/files", "{\"officeType\":\"s\"}");
    EXPECT_EQ(text(created, "id"), "100003");
    const QJsonArray files = json(ask("GET", "/api/v3/office/files")).value(QLatin1String("files")).toArray();
    ASSERT_EQ(files.size(), 3);
    const QJsonObject first = files.first().toObject();
    EXPECT_EQ(first.value(QLatin1String("version")), 2);
    EXPECT_EQ(first.value(QLatin1String("suffix")), QStringLiteral("docx"));
    EXPECT_EQ(first.value(QLatin1String("size")), readFile(place.path("documents/100001.json")).size());
}

TEST_F(DocumentsServiceTest, configurationHoldsThePartsAskedFor)
{
    const auto parts = [this](const QByteArray& query) {
        return json(ask("GET", "/office-config/100001" + query)).keys();
    };
    EXPECT_EQ(parts("?part=file_info,font_name_map,config,plugin_config&startTime=1"),
              QStringList({QStringLiteral("config"), QStringLiteral("file_info"),
                           QStringLiteral("font_name_map"), QStringLiteral("plugin_config")}));
    EXPECT_EQ(parts("?part=config%2Cssr,unknown"),
              QStringList({QStringLiteral("config"), QStringLiteral("ssr")}));
    EXPECT_EQ(parts("").size(), 4);

    const QJsonObject reply = json(ask("GET", "/office-config/100001?part=file_info,config,ssr"));
    EXPECT_EQ(reply.value(QLatin1String("config")).toObject().value(QLatin1String("front_ver")),
              QStringLiteral("2.5.0"));
    EXPECT_EQ(reply.value(QLatin1String("file_info")).toObject().value(QLatin1String("name")),
              QStringLiteral("Welcome.docx"));
    EXPECT_THAT(
        reply.value(QLatin1String("ssr")).toObject().value(QLatin1String("html")).toString().toStdString(),
        StartsWith("<h1>Welcome to Skyleaf</h1>"));
}

TEST_F(DocumentsServiceTest, versionsComeFromTheSite)
{
    const Answer check = ask("GET", "/api/v3/office/prefetch/vcs/100002?office_type=w");
    EXPECT_EQ(check.reply.body, QByteArray("{\"client_version\":\"2.5.0\",\"office_type\":\"s\"}"));

    const Answer info = ask("POST", "/api/quill/office/prefetch/config",
                            "[{\"office_type\":\"word\",\"front_ver\":\"1\"},{\"office_type\":\"zz\"},7]");
    const QJsonArray data = json(info).value(QLatin1String("data")).toArray();
    ASSERT_EQ(data.size(), 1);
    const QJsonObject front = data.first().toObject().value(QLatin1String("front_data")).toObject();
    EXPECT_EQ(front.value(QLatin1String("expire_time")), now / 1000 + 30 * 24 * 60 * 60);
    EXPECT_EQ(front.value(QLatin1String("front_ver")), QStringLiteral("2.5.0"));
    EXPECT_FALSE(data.first().toObject().value(QLatin1String("must_upgrade")).toBool(true));

    place.add("site/version", "\n");
    EXPECT_EQ(text(ask("GET", "/api/v3/office/prefetch/vcs/100002"), "client_version"), "1.0.0");
}

TEST_F(DocumentsServiceTest, packagesAreDescribedAndHandedOut)
{
    const QByteArray directory = "/api/v3/office/package/";
    place.add("packages/quillword-2.5.0.zip", "abc");
    place.add("packages/quill-2.5.0.zip", "other");
    place.add("packages/quillword-9.9.zip", "of another version");
    EXPECT_EQ(
        json(ask("GET", directory + "quillword")),
        (QJsonObject{{QStringLiteral("name"), QStringLiteral("quillword")},
                     {QStringLiteral("version"), QStringLiteral("2.5.0")},
                     {QStringLiteral("url"), QStringLiteral("/api/v3/office/package/quillword/2.5.0.zip")},
                     {QStringLiteral("size"), 3},
                     {QStringLiteral("sha256"),
                      QStringLiteral("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad")}}));
    place.add("packages/quillword-2.5.0.zip", "abcd");
    EXPECT_EQ(text(ask("GET", directory + "quillword"), "sha256"),
              "88d4266fd4e6338d13b845fcf289579d209c897823b9217da3e161936f031589");

    const HttpReply file = ask("GET", directory + "quillword/2.5.0.zip").reply;
    EXPECT_EQ(file.contentType, QByteArray("application/zip"));
    EXPECT_EQ(file.bodySize(), 4);
    HttpRequest again;
    again.method = "GET";
    again.target = directory + "quillword/2.5.0.zip";
    again.ifNoneMatch = header(file, "ETag");
    EXPECT_EQ(service.answer(again).reply.status, 304);
    EXPECT_EQ(ask("GET", directory + "quillword/9.9.zip").reply.bodySize(), 18);

    for (const char* missing : {"quillvs", "word", "nothing", "quillword/2.5.1.zip", "quillword/2.5.0.tar",
                                "quillword/..%2Fquill-2.5.0.zip", "..%2Fsecret/1.zip", "quillword/.zip"}) {
        const Answer reply = ask("GET", directory + missing);
        EXPECT_EQ(reply.reply.status, 404) << missing;
        EXPECT_EQ(text(reply, "result"), "NotFound") << missing;
    }
    EXPECT_EQ(ask("POST", directory + "quillword").reply.status, 405);
}

TEST_F(DocumentsServiceTest, aSessionStartsOnce)
{
    const QByteArray first = header(ask("GET", "/office-config/100001").reply, "Set-Cookie");
    const QByteArray second =
        header(ask("POST", "/api/v3/office/file/100001/preopen/word", "{}").reply, "Set-Cookie");
    EXPECT_THAT(first.toStdString(), testing::MatchesRegex("docs_session=[0-9a-f]+; Path=/; HttpOnly"));
    EXPECT_NE(first, second);
    cookie = "vlt_sid=anna; docs_session=abc";
    EXPECT_TRUE(header(ask("GET", "/office-config/100001").reply, "Set-Cookie").isEmpty());
}

} // namespace
} // namespace documents
