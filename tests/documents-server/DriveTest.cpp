#include <future>

#include <gmock/gmock.h>

#include <QJsonArray>
#include <QJsonDocument>

#include "drive/Sha1.h"
#include "http/ByteRange.h"
#include "service/DriveDownload.h"
#include "support/DriveClient.h"
#include "support/RunningServer.h"

namespace documents {
namespace {

namespace http = boost::beast::http;
using testing::HasSubstr;

class DriveTest : public testing::Test
{
protected:
    TemporarySite place;
    RunningServer server{optionsFor(place)};
    HttpClient client = server.connect();
    DriveClient drive{client};
};

std::string bytesOf(std::size_t size, unsigned seed)
{
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>((seed = seed * 1664525U + 1013904223U) >> 24U);
    return bytes;
}

TEST_F(DriveTest, namesAreOrdinaryFileNames)
{
    const struct
    {
        const char* escaped;
        unsigned status;
    } cases[] = {{"a%25%26b%2Bc+d.txt", 200},
                 {"%C3%A4%F0%9F%8C%BF", 200},
                 {"..x", 200},
                 {"", 400},
                 {".", 400},
                 {"..", 400},
                 {"a%2Fb", 400},
                 {"a%00b", 400},
                 {"a%0Ab", 400},
                 {"%7F", 400}};
    for (const auto& entry : cases)
        EXPECT_EQ(drive.put("0", "x", entry.escaped).result_int(), entry.status) << entry.escaped;
    EXPECT_EQ(drive.put("0", "x", std::string(255, 'n')).result_int(), 200U);
    EXPECT_EQ(drive.put("0", "x", std::string(254, 'n') + "%C3%A4").result_int(), 400U);
    EXPECT_THAT(drive.names("0"),
                testing::ElementsAre("..x", "a%&b+c+d.txt", std::string(255, 'n'), "\xc3\xa4\xf0\x9f\x8c\xbf",
                                     "Welcome.docx", "Budget.xlsx"));
    EXPECT_EQ(attachmentField(QStringLiteral("a\"%ä.txt")),
              QByteArray("attachment; filename=\"a___.txt\"; filename*=UTF-8''a%22%25%C3%A4.txt"));
}

TEST_F(DriveTest, foldersNestAndFallWithAllTheyHold)
{
    const std::string outer = drive.makeFolder("0", "outer");
    const std::string inner = drive.makeFolder(outer, "inner");
    EXPECT_EQ(drive.makeFolder(outer, "inner"), inner);
    const std::string file = drive.id(drive.put(inner, "shared", "f"));
    const std::string kept = drive.id(drive.put("0", "shared", "kept"));
    ASSERT_EQ(drive.id(drive.put(inner, "own", "g")).empty(), false);
    const std::string upload = drive.startUpload({inner, "0", "u", "never"}).id;

    const QJsonObject listing = drive.json("GET", drive.folder(inner));
    EXPECT_EQ(listing.value(QLatin1String("folder")).toObject(),
              listing.value(QLatin1String("path")).toArray().last().toObject());
    EXPECT_EQ(listing.value(QLatin1String("path")).toArray().first().toObject(),
              drive.json("GET", "/items/" + outer));

    EXPECT_EQ(drive.ask("PUT", drive.folder("0") + "/files?name=outer", "x").result_int(), 409U);
    EXPECT_EQ(drive.ask("POST", "/groups/0/folders", R"({"parentid":"0","name":"kept"})").result_int(), 409U);
    EXPECT_EQ(drive.ask("DELETE", "/items/" + outer).result_int(), 200U);
    for (const std::string& gone : {"/items/" + inner, "/items/" + file, "/files/" + file + "/content",
                                    "/uploads/" + upload, drive.folder(inner)})
        EXPECT_EQ(drive.ask("GET", gone).result_int(), 404U) << gone;
    EXPECT_EQ(drive.ask("GET", "/files/" + kept + "/content").body(), "shared");
    EXPECT_EQ(client.ask("GET", "/_control/drive").body(),
              R"({"bytes":6,"files":1,"folders":0,"uploads":0})");
}

TEST_F(DriveTest, whatMakesNoSenseIsRefused)
{
    const std::string file = drive.id(drive.put("0", "x", "f"));
    const struct
    {
        std::string method, target, body;
        unsigned status;
    } cases[] = {
        {"GET", "/nothing", "", 404},
        {"GET", "/items/abc", "", 400},
        {"GET", "/groups/x/folders/0", "", 400},
        {"GET", "/groups/1/folders/" + file, "", 404},
        {"POST", "/groups/0/folders", "[]", 400},
        {"POST", "/groups/0/folders", R"({"parentid":0,"name":"n"})", 400},
        {"POST", "/groups/0/folders", R"({"parentid":"0","name":"\ud800"})", 400},
        {"POST", "/groups/0/folders", R"({"parentid":"7","name":"n"})", 404},
        {"PUT", "/groups/0/folders/0/files?name=n&fileid=7", "x", 404},
        {"PUT", "/groups/0/folders/0/files?name=n&sha1=abc", "x", 400},
        {"PUT", "/groups/0/folders/0/files?name=n", std::string(1024 * 1024 + 1, 'x'), 413},
        {"POST", "/uploads", R"({"groupid":"0","parentid":"0","name":"n","size":-1,"sha1":"x"})", 400},
        {"PUT", "/uploads/7?offset=0", "x", 404},
        {"PUT", "/uploads/7?offset=-1", "x", 400},
        {"POST", "/uploads/7/finish", "", 404},
        {"GET", "/files/" + file + "/content?version=2", "", 404},
        {"GET", "/files/100001/content", "", 404},
        {"DELETE", "/items/100001", "", 400},
        {"DELETE", "/items/7", "", 404},
        {"PATCH", "/items/" + file, "", 405},
    };
    for (const auto& entry : cases) {
        HttpClient other = server.connect();
        const Response reply = DriveClient(other).ask(entry.method, entry.target, entry.body);
        EXPECT_EQ(reply.result_int(), entry.status)
            << entry.method << ' ' << entry.target << ' ' << reply.body();
        EXPECT_THAT(reply.body(), HasSubstr("\"result\":"));
    }
    EXPECT_THAT(drive.ask("GET", "/items/100001").body(), HasSubstr(R"("type":"document")"));
}

TEST_F(DriveTest, everyContentIsAVersion)
{
    const std::string id = drive.id(drive.put("0", "one", "f"));
    EXPECT_THAT(drive.put("0", "two", "f").body(), HasSubstr(R"("version":2)"));
    EXPECT_THAT(drive.put("0", "two", "f").body(), HasSubstr(R"("version":2)")) << "the same bytes";
    EXPECT_THAT(drive.put("0", "three", "g&fileid=" + id).body(), HasSubstr(R"("name":"g")"));
    ASSERT_EQ(drive.put("0", "other", "taken").result_int(), 200U);
    EXPECT_THAT(drive.put("0", "four", "taken&fileid=" + id).body(), HasSubstr(R"("name":"g")"));

    const Response wrong = drive.put("0", "five", "g&sha1=" + std::string(40, '0'));
    EXPECT_EQ(wrong.result_int(), 422U);
    EXPECT_THAT(wrong.body(), HasSubstr(R"("result":"sha1Mismatch")"));

    std::string versions;
    const auto listed =
        drive.json("GET", "/files/" + id + "/versions").value(QLatin1String("versions")).toArray();
    for (const QJsonValue version : listed)
        versions +=
            drive
                .ask("GET", "/files/" + id + "/content?version=" +
                                std::to_string(version.toObject().value(QLatin1String("version")).toInt()))
                .body() +
            ' ';
    EXPECT_EQ(versions, "four three two one ");
    EXPECT_EQ(drive.ask("GET", "/files/" + id + "/content").body(), "four");
}

TEST(ByteRange, readsOneRange)
{
    const struct
    {
        const char* field;
        RangeKind kind;
        qint64 first, length;
    } cases[] = {
        {"bytes=0-99", RangeKind::Part, 0, 99 + 1},
        {"bytes=990-", RangeKind::Part, 990, 10},
        {"bytes=-10", RangeKind::Part, 990, 10},
        {"bytes=-5000", RangeKind::Part, 0, 1000},
        {"bytes=999-5000", RangeKind::Part, 999, 1},
        {"bytes=0-99999999999999999999", RangeKind::Part, 0, 1000},
        {"bytes=1000-", RangeKind::Unsatisfiable, 0, 0},
        {"bytes=-0", RangeKind::Unsatisfiable, 0, 0},
        {"bytes=5-4", RangeKind::Whole, 0, 0},
        {"bytes=0-1,5-6", RangeKind::Whole, 0, 0},
        {"bytes=a-b", RangeKind::Whole, 0, 0},
        {"bytes=-", RangeKind::Whole, 0, 0},
        {"lines=1-2", RangeKind::Whole, 0, 0},
        {"", RangeKind::Whole, 0, 0},
    };
    for (const auto& entry : cases) {
        const RangeWish wish = parseRange(entry.field, 1000);
        EXPECT_EQ(wish.kind, entry.kind) << entry.field;
        EXPECT_EQ(wish.range.first, entry.first) << entry.field;
        EXPECT_EQ(wish.range.length, entry.length) << entry.field;
    }
    EXPECT_EQ(parseRange("bytes=-5", 0).kind, RangeKind::Unsatisfiable);
}

TEST_F(DriveTest, downloadsGoOnWhereTheyStopped)
{
    const std::string bytes = bytesOf(700'000, 1);
    const std::string target = "/files/" + drive.id(drive.put("0", bytes, "f.bin")) + "/content";
    const Response whole = drive.ask("GET", target);
    EXPECT_TRUE(whole.body() == bytes);
    const std::string tag(whole[http::field::etag]);
    EXPECT_EQ(tag, '"' + Sha1::of(QByteArray::fromStdString(bytes)).toStdString() + '"');

    const Response rest = drive.ask("GET", target, {}, "Range: bytes=300000-\r\nIf-Range: " + tag + "\r\n");
    EXPECT_EQ(rest.result_int(), 206U);
    EXPECT_TRUE(rest.body() == bytes.substr(300'000));
    EXPECT_EQ(rest[http::field::content_range], "bytes 300000-699999/700000");
    const struct
    {
        const char *method, *fields;
        unsigned status;
        const char* length;
    } cases[] = {{"GET", "Range: bytes=0-9\r\nIf-Range: \"other\"\r\n", 200, "700000"},
                 {"HEAD", "Range: bytes=0-9\r\n", 200, "700000"},
                 {"GET", "Range: bytes=0-9\r\n", 206, "10"}};
    for (const auto& entry : cases) {
        const Response reply = drive.ask(entry.method, target, {}, entry.fields);
        EXPECT_EQ(reply.result_int(), entry.status) << entry.fields;
        EXPECT_EQ(reply[http::field::content_length], entry.length) << entry.fields;
    }
    const Response beyond = drive.ask("GET", target, {}, "Range: bytes=700000-\r\n");
    EXPECT_EQ(beyond.result_int(), 416U);
    EXPECT_EQ(beyond[http::field::content_range], "bytes */700000");
    EXPECT_EQ(drive.ask("GET", target, {}, "If-None-Match: " + tag + "\r\n").result_int(), 304U);
}

TEST_F(DriveTest, uploadsGoOnAfterACut)
{
    const std::string bytes = bytesOf(2'000'000, 2);
    const DriveClient::Order order{"0", "0", "f", bytes};
    const auto upload = drive.startUpload(order);
    EXPECT_EQ(upload.status, 201U);
    RunningServer::tell(client, "fault", R"({"/api/v1/drive/uploads/":{"cutAfter":1234567,"times":1}})");
    HttpClient cut = server.connect();
    EXPECT_THROW(DriveClient(cut).upload(upload.id, 0, bytes), boost::system::system_error);

    const auto again = drive.startUpload(order);
    EXPECT_EQ(again.id, upload.id);
    EXPECT_EQ(again.status, 200U);
    EXPECT_EQ(again.offset, 1'234'567U);
    EXPECT_THAT(drive.upload(upload.id, 0, "x").body(), HasSubstr(R"("offset":1234567,)"));
    EXPECT_EQ(drive.ask("POST", "/uploads/" + upload.id + "/finish").result_int(), 409U);
    RunningServer::tell(
        client, "fault",
        R"({"/api/v1/drive/uploads/":{"status":503,"times":1},"/api/v1/drive/uploads/1?offset=5":{"reset":true}})");
    EXPECT_EQ(drive.upload(upload.id, again.offset, bytes.substr(again.offset)).result_int(), 503U);
    HttpClient reset = server.connect();
    EXPECT_THROW(DriveClient(reset).upload("1", 5, "x"), boost::system::system_error);
    HttpClient tooMuch = server.connect();
    EXPECT_EQ(DriveClient(tooMuch).upload(upload.id, again.offset, bytes).result_int(), 413U);

    const std::size_t here = drive.startUpload(order).offset;
    ASSERT_EQ(here, again.offset) << "what is refused changes nothing";
    EXPECT_EQ(drive.upload(upload.id, here, bytes.substr(here)).body(), R"({"offset":2000000})");
    const Response finished = drive.ask("POST", "/uploads/" + upload.id + "/finish");
    EXPECT_EQ(finished.result_int(), 200U);
    EXPECT_TRUE(drive.ask("GET", "/files/" + drive.id(finished) + "/content").body() == bytes);
    EXPECT_EQ(drive.ask("GET", "/uploads/" + upload.id).result_int(), 404U);

    const auto known = drive.startUpload({"0", "0", "copy", bytes});
    EXPECT_EQ(known.offset, bytes.size()) << "bytes that are here need not be sent";
    EXPECT_EQ(drive.ask("POST", "/uploads/" + known.id + "/finish").result_int(), 200U);
    const auto empty = drive.startUpload({"0", "0", "empty", ""});
    EXPECT_EQ(drive.ask("POST", "/uploads/" + empty.id + "/finish").result_int(), 200U);
}

TEST_F(DriveTest, wrongBytesEndTheUpload)
{
    const auto upload = drive.startUpload({"0", "0", "f", "right"});
    ASSERT_EQ(drive.upload(upload.id, 0, "wrong").result_int(), 200U);
    const Response finished = drive.ask("POST", "/uploads/" + upload.id + "/finish");
    EXPECT_EQ(finished.result_int(), 422U);
    EXPECT_THAT(finished.body(), HasSubstr(R"("result":"sha1Mismatch")"));
    EXPECT_EQ(client.ask("GET", "/_control/drive").body(),
              R"({"bytes":0,"files":0,"folders":0,"uploads":0})");
}

TEST_F(DriveTest, theNewestWriterOfAnUploadIsTheOnlyOne)
{
    const auto upload = drive.startUpload({"0", "0", "f", "0123456789"});
    HttpClient hanging = server.connect();
    hanging.send("PUT /api/v1/drive/uploads/" + upload.id +
                 "?offset=0 HTTP/1.1\r\nCookie: vlt_sid=anna\r\nContent-Length: 10\r\n\r\n012");
    while (drive.json("GET", "/uploads/" + upload.id).value(QLatin1String("offset")).toInt() < 3) {
    }
    EXPECT_EQ(drive.upload(upload.id, 3, "3456").body(), R"({"offset":7})");
    hanging.send("xyzxyzx");
    EXPECT_EQ(hanging.receive().result_int(), 409U);
    EXPECT_EQ(drive.upload(upload.id, 7, "789").result_int(), 200U);
    EXPECT_EQ(drive.ask("POST", "/uploads/" + upload.id + "/finish").result_int(), 200U);
}

TEST_F(DriveTest, manyUploadAtOnce)
{
    const auto uploadOne = [this](unsigned seed) {
        HttpClient own = server.connect();
        DriveClient mine(own);
        const std::string bytes = bytesOf(400'000 + seed, seed);
        const auto upload = mine.startUpload({"0", "0", "f" + std::to_string(seed), bytes});
        for (std::size_t at = 0; at < bytes.size(); at += 70'000)
            mine.upload(upload.id, at, bytes.substr(at, 70'000));
        const std::string id = mine.id(mine.ask("POST", "/uploads/" + upload.id + "/finish"));
        return mine.ask("GET", "/files/" + id + "/content").body() == bytes;
    };
    std::vector<std::future<bool>> uploads;
    for (unsigned seed = 1; seed <= 8; ++seed)
        uploads.push_back(std::async(std::launch::async, uploadOne, seed));
    for (auto& upload : uploads)
        EXPECT_TRUE(upload.get());
}

TEST_F(DriveTest, aThousandSmallFilesAreListed)
{
    std::vector<std::string> expected;
    const std::string folder = drive.makeFolder("0", "many");
    for (int i = 1000; i < 2000; ++i) {
        expected.push_back("f" + std::to_string(i));
        ASSERT_EQ(drive.put(folder, expected.back(), expected.back()).result_int(), 200U);
    }
    EXPECT_EQ(drive.names(folder), expected);
}

} // namespace
} // namespace documents
