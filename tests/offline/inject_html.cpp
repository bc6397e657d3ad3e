#include "FakeApplication.h"
#include "OfflineFixture.h"
#include "offline/InjectScript.h"
#include "offline/LocalPackagePath.h"
#include "offline/NDOPInjectHtml.h"
#include "proxy/NDOPConfig.h"
#include "support/OddFiles.h"

#include <QJsonArray>

namespace {

using NDocsOfflinePage::NDOPInjectHtml;

const QString word = QStringLiteral("w");
const QString begin = QStringLiteral("window.__INJECT__ = window.__INJECT__ || {};");

class InjectHtml : public OfflineFixture
{
protected:
    void SetUp() override
    {
        OfflineFixture::SetUp();
        shell.cloud.user.localDataDir = directory.filePath(QStringLiteral("user"));
        record.setUrl(QStringLiteral("https://docs.test/p/7?officeType=w&localId=L1"));
        record.setPackagePaths(QStringLiteral("/sync"), QStringLiteral("/cache"));
    }

    QString scriptOf(std::initializer_list<QJsonValue> names) const
    {
        return record.buildInjectScript(word, QJsonArray(names));
    }

    FakeApplication shell;
    NDOPInjectHtml record;
};

TEST_F(InjectHtml, WithoutAListEveryValueIsWritten)
{
    NDOPInjectHtml empty;
    EXPECT_EQ(empty.buildInjectScript(word, {}),
              begin + QStringLiteral("window.__INJECT__._LOCAL_INJECT_DATA_FILEINFO = null;"
                                     "window.__INJECT__._LOCAL_INJECT_DATA_OFFLINESWITCH = false;"
                                     "window.__INJECT__._LOCAL_INJECT_DATA = {};"
                                     "window.__INJECT__._LOCAL_INJECT_DATA.content = null;"
                                     "window.__INJECT__._LOCAL_INJECT_CACHE = null;"
                                     "window.__INJECT__._LOCAL_INJECT_DATA_SSRCONTENT = null;"
                                     "window.__INJECT__._LOCAL_INJECT_DATA_SSRCONTENT_TIMES = null;"
                                     "window.__INJECT__._LOCAL_CONNID = \"null\";"));
    write("user/quillfile/L1/sync/content.word", "[\"%1 %4\"]");
    record.setFileInfo("{\"n\": \"%3 %7\"}");
    record.setConnId(QStringLiteral("%2"));
    const QString script = record.buildInjectScript(word, {});
    for (const char* text : {"FILEINFO = {\"n\": \"%3 %7\"};", "content = [\"%1 %4\"];", "CONNID = \"%2\";"})
        EXPECT_TRUE(script.contains(QLatin1String(text))) << text;
}

TEST_F(InjectHtml, AListSaysWhichLinesAreWritten)
{
    record.setConnId(QStringLiteral("abc"));
    const QString connId = QStringLiteral("_LOCAL_CONNID");
    const QString line = QStringLiteral("\nwindow.__INJECT__._LOCAL_CONNID =\"abc\";");
    EXPECT_EQ(scriptOf({}), QString());
    EXPECT_EQ(scriptOf({connId}), begin + line);
    EXPECT_EQ(scriptOf({3, connId, QStringLiteral("_OTHER"), connId}), begin + line + line);
    EXPECT_EQ(scriptOf({QStringLiteral("_OTHER")}), begin);

    write("user/quillfile/L1/sync/content.word", "'%1</script>'");
    EXPECT_EQ(scriptOf({QStringLiteral("_LOCAL_INJECT_DATA")}),
              begin + QStringLiteral("\nwindow.__INJECT__._LOCAL_INJECT_DATA = {};"
                                     "\nwindow.__INJECT__._LOCAL_INJECT_DATA.content = '%1<\\/script>';"));
    write("user/quillfile/L1/cache/csr.html", "<b>\xff\"</b>");
    EXPECT_EQ(scriptOf({QStringLiteral("_LOCAL_INJECT_CACHE")}),
              begin + QStringLiteral("\nwindow.__INJECT__._LOCAL_INJECT_CACHE = "
                                     "{\"csr\":\"<b>\uFFFD\\\"<\\\\/b>\"};"));
    record.setFileInfo("{\"n\":\"</script>\"}");
    EXPECT_TRUE(scriptOf({QStringLiteral("_LOCAL_INJECT_DATA_FILEINFO")}).endsWith(u"\"<\\/script>\"};"));

    host->configCentre().set(
        addOnGroup, 60708,
        {{QStringLiteral("DOPOfflineEditMasterSwitch"), true}, {QStringLiteral("wordDOPSwitch"), true}});
    nreadonce::resetForTest();
    const QString offlineSwitch = QStringLiteral("_LOCAL_INJECT_DATA_OFFLINESWITCH");
    EXPECT_TRUE(scriptOf({offlineSwitch}).endsWith(u"= true;"));
    EXPECT_TRUE(record.buildInjectScript({}, QJsonArray{offlineSwitch}).endsWith(u"= false;"));
}

TEST_F(InjectHtml, NothingOfAValueEndsOrSwallowsTheScript)
{
    const struct
    {
        const char* value;
        const char* written;
    } cases[] = {
        {R"({"n":"a<!--<script>"})", R"({"n":"a\u003c!--\u003cscript>"})"},
        {R"({"n":"<ScRiPt</sCript>"})", R"({"n":"\u003cScRiPt<\/sCript>"})"},
        {"[\"\xe2\x80\xa8x\xe2\x80\xa9\"]", R"(["\u2028x\u2029"])"},
        {R"('\<!--\\<!--')", R"('\u003c!--\\\u003c!--')"},
        {R"('<div><scrip t><!-')", R"('<div><scrip t><!-')"},
        {R"(["ä", '"', "'", "\"", "\\", "/*", "//", "`", "\u0041;"])",
         R"(["ä", '"', "'", "\"", "\\", "/*", "//", "`", "\u0041;"])"},
        {" 1 ", " 1 "},
        // What would not stay one value counts as none.
        {" ", "null"},
        {R"({"a": "cut)", "null"},
        {R"({"a": "cut\)", "null"},
        {R"({"a": [1, 2})", "null"},
        {"[1]]", "null"},
        {"'a\nb'", "null"},
        {"1;alert(1)", "null"},
        {"1 /* swallowed", "null"},
        {"1 // swallowed", "null"},
        {"`swallowed", "null"},
        {"1 <!-- swallowed", "null"},
        {"1 <script>", "null"},
    };
    for (const auto& [value, expected] : cases) {
        const QString line = QStringLiteral(" = %1;").arg(QString::fromUtf8(expected));
        record.setFileInfo(value);
        EXPECT_TRUE(scriptOf({QStringLiteral("_LOCAL_INJECT_DATA_FILEINFO")}).endsWith(line)) << value;
        write("user/quillfile/L1/sync/content.word", value);
        EXPECT_TRUE(scriptOf({QStringLiteral("_LOCAL_INJECT_DATA")}).endsWith(line)) << value;
    }
    write("user/quillfile/L1/sync/content.word", QByteArray(2000, '[') + QByteArray(2000, ']'));
    EXPECT_TRUE(scriptOf({QStringLiteral("_LOCAL_INJECT_DATA")}).endsWith(u"= null;"))
        << "too deep to be read";
    EXPECT_TRUE(hasLogged(QStringLiteral("the local content is not injected: it is no whole value")));
    write("user/quillfile/L1/cache/csr.html", "<!--<script>\xe2\x80\xa8</textarea><plaintext>");
    EXPECT_TRUE(scriptOf({QStringLiteral("_LOCAL_INJECT_CACHE")})
                    .endsWith(u"= {\"csr\":\"\\u003c!--\\u003cscript>\\u2028<\\\\/textarea><plaintext>\"};"));
}

TEST_F(InjectHtml, OnlyFilesOfThePackageAreInjected)
{
    const QString content = directory.filePath(QStringLiteral("user/quillfile/L1/sync/content.word"));
    const QString rendering = directory.filePath(QStringLiteral("user/quillfile/L1/cache/csr.html"));
    const QString list = package + QStringLiteral("/inject.json");
    const auto writeAll = [this] {
        write("user/quillfile/L1/sync/content.word", "1");
        write("user/quillfile/L1/cache/csr.html", "x");
        write("package/inject.json", R"(["_LOCAL_INJECT_DATA", "_LOCAL_INJECT_CACHE"])");
    };
    writeAll();
    const QString outside = write("outside", "2");
    const auto page = [this] {
        NDOPInjectHtml fresh = record;
        return fresh.injectHtml("<!--__INJECT__-->", word, package);
    };
    ASSERT_TRUE(page().contains("content = 1;") && page().contains("\"csr\":\"x\""));
    for (const OddFile& odd : oddFiles) {
        for (const QString& place : {content, rendering, list}) {
            ASSERT_TRUE(putOddFile(odd, place)) << odd.name;
            const QByteArray injected = page();
            EXPECT_EQ(injected.contains("content = 1;"), place != content) << odd.name;
            EXPECT_EQ(injected.contains("{\"csr\":\"x\"}"), place != rendering) << odd.name;
            QDir(place).removeRecursively();
            QFile::remove(place);
            writeAll();
        }
    }
    for (const auto& link : {+[](const QString&from, const QString&to) { return QFile::link(from, to); },
                             +[](const QString&from, const QString&to) {
                                 return ::link(qUtf8Printable(from), qUtf8Printable(to)) == 0;
                             }}) {
        QFile::remove(content);
        ASSERT_TRUE(link(outside, content));
        EXPECT_TRUE(page().contains("content = null;"));
    }
    EXPECT_TRUE(hasLogged(QStringLiteral("content.word is not injected: it is a file of elsewhere as well")));
    EXPECT_TRUE(hasLogged(QStringLiteral("content.word is not injected: it has more than 33554432 bytes")));

    // The directories themselves are the package's, too.
    QDir().mkpath(directory.filePath(QStringLiteral("other/sync")));
    write("other/sync/content.word", "3");
    ASSERT_TRUE(QFile::link(directory.filePath(QStringLiteral("other/sync")),
                            directory.filePath(QStringLiteral("user/quillfile/L1/linked"))));
    for (const char* path : {"/linked", "/../../../other/sync"}) {
        record.setPackagePaths(QLatin1String(path), QStringLiteral("/cache"));
        EXPECT_TRUE(page().contains("content = null;")) << path;
    }
}

TEST_F(InjectHtml, ThePageIsBuiltOnce)
{
    const QByteArray html = "<a><!--__INJECT__--></a><!--__INJECT__-->";
    for (const auto& [list, page] : {std::pair<QByteArray, QByteArray>{"[]", html}, {"{}", html}}) {
        write("package/inject.json", list);
        NDOPInjectHtml fresh;
        EXPECT_EQ(fresh.injectHtml(html, word, package), page) << list.constData();
    }
    EXPECT_FALSE(hasLogged(QStringLiteral("injected connid")));
    write("package/inject.json", "[\"_LOCAL_CONNID\"]");
    record.setConnId(QStringLiteral("abc"));
    EXPECT_TRUE(record.injectHtml(html, QString(), package).isEmpty());
    const QByteArray script = "<meta charset=\"utf-8\" /><script>window.__INJECT__ = window.__INJECT__ || {};"
                              "\nwindow.__INJECT__._LOCAL_CONNID =\"abc\";</script>";
    const QByteArray page = "<a>" + script + "</a>" + script;
    EXPECT_EQ(record.injectHtml(html, word, package), page);
    record.setConnId(QStringLiteral("other"));
    EXPECT_EQ(record.injectHtml("<b>", word, package), page);
    EXPECT_TRUE(
        hasLogged(QStringLiteral("injected connid: abc--NDocsOfflinePage::NDOPInjectHtml::injectHtml")));

    EXPECT_EQ(NDOPInjectHtml().injectHtml("<b>", word, package), "<b>") << "no marker";
    EXPECT_TRUE(hasLogged(QStringLiteral("injected connid: --")));
    EXPECT_TRUE(NDOPInjectHtml()
                    .injectHtml("<!--__INJECT__-->", word, QStringLiteral("/none"))
                    .contains("_LOCAL_CONNID = \"null\";"))
        << "everything without a list";
}

TEST_F(InjectHtml, ALocalIdNamesADirectoryOfTheUser)
{
    EXPECT_EQ(localPckRootPath(QStringLiteral("L1")),
              directory.filePath(QStringLiteral("user/quillfile/L1")));
    for (const char* localId : {"", ".", "..", "../other", "a/b", "a\\b"})
        EXPECT_TRUE(localPckRootPath(QLatin1String(localId)).isEmpty()) << localId;
    shell.cloud.user.localDataDir.clear();
    EXPECT_TRUE(localPckRootPath(QStringLiteral("L1")).isEmpty());

    write("user/quillfile/L1/sync/content.word", "1");
    record.setUrl(QStringLiteral("https://docs.test/p/7"));
    record.setPackagePaths(QStringLiteral("/none"), QStringLiteral("/none"));
    EXPECT_TRUE(scriptOf({QStringLiteral("_LOCAL_INJECT_DATA")}).endsWith(u"content = 1;"))
        << "paths stay without a local id";
}

} // namespace
