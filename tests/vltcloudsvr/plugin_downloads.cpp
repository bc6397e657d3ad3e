#include "PackageService.h"
#include "vltcloudsvr/common/InstalledPlugins.h"
#include "vltcloudsvr/plugins/PackageInstaller.h"
#include "vltcloudsvr/plugins/PluginDownloads.h"

#include <gmock/gmock.h>

#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

using namespace testfiles;
using namespace vlt::cloudsvr;

constexpr int patienceMs = 20'000;

class PluginDownloadsOf : public testing::Test
{
protected:
    void SetUp() override { start(); }
    void start()
    {
        DownloadSetup setup;
        setup.pluginsDir = plugins;
        setup.spreadMs = 0;
        setup.retryMs = 1;
        downloads.emplace(setup);
    }

    QByteArray package(const QString& version, const std::vector<Entry>& more = {})
    {
        std::vector<Entry> entries = {{"version", (version + s("\n")).toUtf8()},
                                      {"dist/index.html", QByteArray(100'000, 'h')}};
        entries.insert(entries.end(), more.begin(), more.end());
        writeZip(directory.filePath(s("made.zip")), entries);
        return *read(directory.filePath(s("made.zip")));
    }

    /** Asks for the plug-in and waits for the end; whether it was installed. */
    bool download(const QString& name = s("quillword"))
    {
        QSignalSpy installed(&*downloads, &PluginDownloads::installed);
        QSignalSpy idle(&*downloads, &PluginDownloads::idle);
        downloads->request(caller(), name);
        EXPECT_TRUE(idle.wait(patienceMs));
        return installed.count() == 1;
    }
    Caller caller() const { return {{}, {}, service.url(), {{s("docs.test"), service.address()}}}; }
    int requestsOf(const char* path) const
    {
        return int(std::count_if(service.requests.begin(), service.requests.end(),
                                 [path](const QByteArray& request) { return request.startsWith(path); }));
    }

    QTemporaryDir directory;
    const QString plugins = directory.filePath(s("plugins"));
    PackageService service;
    std::optional<PluginDownloads> downloads;
};

TEST_F(PluginDownloadsOf, InstallAPackageBesideTheOlderOnesAndKeepIt)
{
    service.offer(s("quillword"), s("1.9"), package(s("1.9")));
    EXPECT_TRUE(download());
    service.offer(s("quillword"), s("1.10"), package(s("1.10")));
    EXPECT_TRUE(download());
    EXPECT_EQ(service.requests.constFirst(), "/api/v3/office/package/quillword docs.test");
    const QMap<QString, InstalledVersion> newest = newestInstalled(plugins);
    EXPECT_EQ(newest.value(s("quillword")).version, s("1.10"));
    EXPECT_EQ(newest.value(s("quillword")).directory, plugins + s("/quillword/1.10"));
    EXPECT_EQ(read(plugins + s("/quillword/1.9/dist/index.html")), QByteArray(100'000, 'h'));

    // What is there already is told, and not fetched again.
    service.requests.clear();
    EXPECT_TRUE(download());
    EXPECT_EQ(service.requests.size(), 1);
    EXPECT_EQ(tree(plugins).filter(s(".zip")), QStringList());
    // A version that is not complete any more is.
    QFile::remove(plugins + s("/quillword/1.10/version"));
    EXPECT_EQ(newestInstalled(plugins).value(s("quillword")).version, s("1.9"));
    EXPECT_TRUE(download());
    EXPECT_EQ(newestInstalled(plugins).value(s("quillword")).version, s("1.10"));
}

TEST_F(PluginDownloadsOf, JoinWhatIsUnderWayAndLoadDifferentPluginsSideBySide)
{
    service.offer(s("quillword"), s("1"), package(s("1")));
    service.offer(s("quillvs"), s("2"), package(s("2")));
    downloads->request(caller(), s("quillword"));
    downloads->request(caller(), s("quillvs"));
    EXPECT_TRUE(download(s("quillword")) || newestInstalled(plugins).size() == 2);
    EXPECT_EQ(newestInstalled(plugins).keys(), QStringList({s("quillvs"), s("quillword")}));
    EXPECT_EQ(requestsOf("/api/v3/office/package/quillword/"), 1);
}

TEST_F(PluginDownloadsOf, RetryTwiceWhatMayPassAndNotWhatWillNot)
{
    const QByteArray good = package(s("1"));
    const QByteArray zipPath("/api/v3/office/package/quillword/1.zip");
    struct Case
    {
        const char* what;
        std::function<void()> spoil;
        int descriptions;
    };
    const auto describe = [&](const char* member, const QJsonValue& value) {
        return [&, member, value] {
            service.offer(s("quillword"), s("1"), good,
                          [&](QJsonObject& described) { described.insert(s(member), value); });
        };
    };
    const auto offerZip = [&](const QByteArray& zip) {
        return [&, zip] { service.offer(s("quillword"), s("1"), zip); };
    };
    const std::vector<Case> table = {
        {"no package", [] {}, 1},
        {"server error",
         [&] {
             service.answers["/api/v3/office/package/quillword"] = {503, {}};
         },
         3},
        {"no JSON",
         [&] {
             service.answers["/api/v3/office/package/quillword"] = {200, "<p>"};
         },
         1},
        {"other name", describe("name", s("quillvs")), 1},
        {"bad version", describe("version", s("../1")), 1},
        {"foreign URL", describe("url", s("http://127.0.0.2:1/x.zip")), 1},
        {"other scheme", describe("url", s("file:///etc/passwd")), 1},
        {"no size", describe("size", 0), 1},
        {"no hash", describe("sha256", s("abc")), 1},
        {"wrong hash", describe("sha256", QString(64, QLatin1Char('a'))), 3},
        {"smaller than said", describe("size", good.size() + 1), 3},
        {"larger than said", describe("size", good.size() - 1), 3},
        {"cut off",
         [&] {
             service.offer(s("quillword"), s("1"), good);
             service.answers[zipPath] = {200, good.left(50), good.size()};
         },
         3},
        {"no zip file there",
         [&] { service.offer(s("quillword"), s("1"), good), service.answers.remove(zipPath); }, 3},
        {"not a zip file", offerZip("zip"), 1},
        {"says another version", offerZip(package(s("2"))), 1},
        {"leads outside", offerZip(package(s("1"), {{"../evil", "x"}})), 1}};
    for (const Case& wrong : table) {
        service.answers.clear();
        service.requests.clear();
        wrong.spoil();
        EXPECT_FALSE(download()) << wrong.what;
        EXPECT_EQ(requestsOf("/api/v3/office/package/quillword d"), wrong.descriptions) << wrong.what;
        const QStringList left = tree(plugins).filter(QRegularExpression(s("^(?!\\.incoming$|quillword$)")));
        EXPECT_EQ(left, QStringList()) << wrong.what;
    }
    service.offer(s("quillword"), s("1"), good);
    EXPECT_TRUE(download()) << "the next request tries again";
}

TEST_F(PluginDownloadsOf, AreOverWithTheServiceAndClearedAfterACrash)
{
    service.offer(s("quillword"), s("1"), package(s("1")));
    PackageService::Answer& answer = service.answers["/api/v3/office/package/quillword/1.zip"];
    answer = {200, answer.body.left(50), answer.body.size(), true};
    downloads->request(caller(), s("quillword"));
    QSignalSpy none(&*downloads, &PluginDownloads::idle);
    while (service.requests.size() < 2)
        none.wait(1);
    EXPECT_EQ(tree(plugins).filter(s(".zip")).size(), 1);
    downloads.reset();
    EXPECT_EQ(tree(plugins), QStringList({s(".incoming")}));
    write(plugins + s("/.incoming/left.zip"), "x");
    write(plugins + s("/quillword/.new-1/version"), "1");
    write(plugins + s("/quillword/0.9/version"), "0.9");
    start();
    EXPECT_EQ(tree(plugins), QStringList({s("quillword"), s("quillword/0.9"), s("quillword/0.9/version")}));
    Caller nowhere = caller();
    nowhere.apiUrl = s("docs");
    QSignalSpy idle(&*downloads, &PluginDownloads::idle);
    downloads->request(nowhere, s("quillword"));
    EXPECT_TRUE(idle.wait(patienceMs));
}

TEST(PluginVersions, AreKeptThreeOrSixWhenTheyAreYoung)
{
    const QTemporaryDir directory;
    const auto make = [&](const QStringList& versions) {
        for (const QString& version : versions)
            write(directory.filePath(s("p/") + version + s("/version")), version.toUtf8());
    };
    const auto left = [&] {
        QStringList versions;
        for (const InstalledVersion& version : installedVersions(directory.path(), s("p")))
            versions.append(version.version);
        return versions;
    };
    const QDateTime now = QDateTime::currentDateTime();
    make({s("1"), s("2"), s("3"), s("4"), s("10")});
    pruneVersions(directory.path(), s("p"), s("4"), now);
    EXPECT_EQ(left().size(), 5) << "all are young";
    make({s("5"), s("6"), s("7")});
    pruneVersions(directory.path(), s("p"), s("1"), now);
    EXPECT_EQ(left(), QStringList({s("10"), s("7"), s("6"), s("5"), s("4"), s("1")}));
    pruneVersions(directory.path(), s("p"), s("1"), now.addDays(2));
    EXPECT_EQ(left(), QStringList({s("10"), s("7"), s("1")})) << "the newest and what came last stay";
}

} // namespace
