#include "OfflineFixture.h"
#include "offline/NDOPLocalResourceDataPreloader.h"
#include "support/OddFiles.h"

#include <QSignalSpy>

#include <atomic>
#include <thread>

namespace {

using NDocsOfflinePage::NDOPLocalResourceDataPreloader;

class Preloader : public OfflineFixture
{
protected:
    void makePreloader(const char* configuration = R"({"enabled": true})")
    {
        setItem(59743, configuration);
        preloader = std::make_unique<NDOPLocalResourceDataPreloader>();
        timer = preloader->findChild<QTimer*>();
    }

    QByteArray data(const char* name) const
    {
        return preloader->fileData(package + u'/' + QLatin1String(name));
    }
    void read() { preloader->readLocalResource(package, QStringLiteral("w")); }

    std::unique_ptr<NDOPLocalResourceDataPreloader> preloader;
    QTimer* timer = nullptr;
};

TEST_F(Preloader, ReadsThePageAndWhatThePackageLists)
{
    makePreloader();
    write("package/dist_langs/zh-CN/index-w.html", "page");
    const struct
    {
        const char* list;
        QString logged;
    } lists[] = {{nullptr, QStringLiteral("does not exist")},
                 {"", QStringLiteral("is empty")},
                 {"{\"pc\": []}", QStringLiteral("list is empty")},
                 {"[\"/a.js\"]", QStringLiteral("list is empty")}};
    for (const auto& [list, logged] : lists) {
        preloader->onClean();
        const QString path =
            list ? write("package/preload-file.json", list) : package + QStringLiteral("/preload-file.json");
        read();
        EXPECT_EQ(data("dist_langs/zh-CN/index-w.html"), "page");
        EXPECT_TRUE(hasLogged(QStringLiteral("preload file %1 %2--").arg(path, logged)))
            << qPrintable(logged);
    }
    write("package/a.js", "a");
    write("package/b.js", "b");
    write("package/preload-file.json",
          R"({"pc": [1, "", null, "/missing.js", "/a.js"], "mobile": ["/b.js"]})");
    read();
    EXPECT_EQ(data("a.js"), "a");
    EXPECT_EQ(data("b.js"), QByteArray());
    write("package/a.js", "changed");
    read();
    EXPECT_EQ(data("a.js"), "a") << "read once";
}

TEST_F(Preloader, NothingOutsideThePackageIsRead)
{
    makePreloader();
    const QString secret = write("secret", "s");
    write("package/inner/a.js", "a");
    ASSERT_TRUE(QFile::link(secret, package + QStringLiteral("/link.js")));
    ASSERT_TRUE(QFile::link(package + QStringLiteral("/inner"), package + QStringLiteral("/alias")));
    write("package/preload-file.json",
          R"({"pc": ["/../secret", "/link.js", "-evil/x.js", "/inner", "/alias/a.js"]})");
    write("package-evil/x.js", "x");
    read();
    EXPECT_EQ(data("../secret") + data("link.js") + preloader->fileData(package + u"-evil/x.js"),
              QByteArray());
    EXPECT_EQ(data("alias/a.js"), "a") << "a link within the package";
    EXPECT_TRUE(hasLogged(QStringLiteral("/link.js is not used: it is not a file of the package")));
}

TEST_F(Preloader, WhatIsNoFileIsLeftOut)
{
    makePreloader();
    write("package/good.js", "good");
    write("package/preload-file.json", R"({"pc": ["/odd.js", "/good.js"]})");
    for (const OddFile& odd : oddFiles) {
        preloader->onClean();
        ASSERT_TRUE(putOddFile(odd, package + QStringLiteral("/odd.js")));
        read();
        EXPECT_EQ(data("good.js"), "good") << odd.name;
        EXPECT_EQ(data("odd.js"), QByteArray()) << odd.name;
        QDir(package + QStringLiteral("/odd.js")).removeRecursively();
    }
    for (const OddFile& odd : oddFiles) {
        preloader->onClean();
        ASSERT_TRUE(putOddFile(odd, package + QStringLiteral("/preload-file.json")));
        read();
        EXPECT_EQ(data("good.js"), QByteArray()) << odd.name;
        QDir(package + QStringLiteral("/preload-file.json")).removeRecursively();
    }
    EXPECT_TRUE(hasLogged(QStringLiteral("preload-file.json cannot be opened")));
    EXPECT_TRUE(hasLogged(QStringLiteral("odd.js is not used: it has more than")));
}

TEST_F(Preloader, DataIsDroppedSomeMinutesAfterTheLastPackage)
{
    const struct
    {
        const char* configuration;
        int minutes;
    } cases[] = {{R"({"enabled": true})", 10},
                 {R"({"enabled": true, "clean_timer_interval": 2.9})", 2},
                 {R"({"enabled": true, "clean_timer_interval": 0.5})", 10},
                 {R"({"enabled": true, "clean_timer_interval": 1e300})", 10},
                 {R"({"enabled": true, "clean_timer_interval": 1e9})", 35791},
                 {R"({"enabled": false, "clean_timer_interval": 5})", 0}};
    write("package/dist_langs/zh-CN/index-w.html", "page");
    for (const auto& [configuration, minutes] : cases) {
        nreadonce::resetForTest();
        makePreloader(configuration);
        ASSERT_TRUE(timer);
        EXPECT_EQ(timer->interval(), minutes * 60000) << configuration;
        read();
        EXPECT_EQ(timer->isActive(), minutes > 0) << configuration;
    }
    nreadonce::resetForTest();
    makePreloader();
    QSignalSpy cleaned(preloader.get(), &NDOPLocalResourceDataPreloader::preloadedDataClean);
    read();
    timer->setInterval(1);
    ASSERT_TRUE(cleaned.wait());
    EXPECT_TRUE(data("dist_langs/zh-CN/index-w.html").isEmpty());
    EXPECT_FALSE(timer->isActive());
    preloader->stop();
    read();
    EXPECT_TRUE(data("dist_langs/zh-CN/index-w.html").isEmpty()) << "stopped";
}

TEST_F(Preloader, ReadersAreServedWhileDataComesAndGoes)
{
    makePreloader();
    const QString page = write("package/dist_langs/zh-CN/index-w.html", "page");
    std::atomic<bool> isRead{false};
    std::thread reader([&] {
        for (int round = 0; round < 500; ++round) {
            preloader->loadFile(page);
            isRead = preloader->fileData(page) == "page" || isRead;
        }
    });
    for (int round = 0; round < 500; ++round) {
        preloader->storeFile(page, "page");
        preloader->onClean();
    }
    reader.join();
    EXPECT_TRUE(isRead);
}

} // namespace
