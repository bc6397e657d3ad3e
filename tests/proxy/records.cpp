#include "nrt/kcc.h"
#include "proxy/NCloudDocsRecordManager.h"
#include "proxy/NOpenUsageRecord.h"
#include "proxy/NPackageRecords.h"
#include "proxy/NVersionCheckCache.h"
#include "support/ServicesFixture.h"

#include <QCoreApplication>
#include <QSettings>

namespace {

class Records : public ServicesFixture
{
protected:
    void SetUp() override
    {
        ServicesFixture::SetUp();
        start();
        setNow(noon);
    }

    static NCloudDocsRecordManager& manager() { return *NCloudDocsRecordManager::instance(); }

    const QDateTime noon = QDateTime(QDate(2026, 3, 10), QTime(12, 0));
    const QString file = QStringLiteral("file");
};

TEST_F(Records, AFrontVersionIsGoodForLessThanTwoHours)
{
    manager().updateEnvConfigRecord(file, QStringLiteral("1.2"));
    restart();
    const struct
    {
        qint64 laterSeconds;
        bool usable;
    } cases[] = {{0, true}, {2 * 3600 - 1, true}, {2 * 3600, false}, {-1, false}};
    for (const auto& [later, usable] : cases) {
        setNow(noon.addSecs(later));
        EXPECT_EQ(manager().retrieveEnvConfigRecord(file).isUsable(), usable) << later;
    }
    EXPECT_EQ(manager().retrieveEnvConfigRecord(file).frontVer, QStringLiteral("1.2"));

    setNow(noon.addSecs(2 * 3600));
    manager().updateEnvConfigRecord(QStringLiteral("other"), QStringLiteral("1.3"));
    EXPECT_TRUE(manager().retrieveEnvConfigRecord(file).frontVer.isEmpty()) << "purged by the update";
}

TEST_F(Records, ThreePackagesOfATypeAreKeptAndTheOldestGoes)
{
    const auto path = [](const char* version) {
        return manager().retrievePluginPathRecord(QStringLiteral("w"), QLatin1String(version));
    };
    int minute = 0;
    for (const char* version : {"2", "1", "3", "1", "2"}) {
        setNow(noon.addSecs(60 * ++minute));
        manager().updatePluginPathRecord(QStringLiteral("w"), QLatin1String(version),
                                         QStringLiteral("/") + QLatin1String(version));
    }
    EXPECT_EQ(path("3"), QStringLiteral("/3")) << "updating a version that is there removes none";
    manager().updatePluginPathRecord(QStringLiteral("w"), QStringLiteral("4"), QStringLiteral("/4"));
    EXPECT_TRUE(path("3").isEmpty()) << "the oldest";
    EXPECT_EQ(path("1"), QStringLiteral("/1"));
    restart();
    EXPECT_EQ(path("4"), QStringLiteral("/4"));
    EXPECT_TRUE(manager().retrievePluginPathRecord(QStringLiteral("s"), QStringLiteral("4")).isEmpty());
}

TEST_F(Records, DamagedRecordsCountAsNone)
{
    for (const char* text :
         {"{", "[1]", "{\"file\": 3}", "{\"file\": {\"front_ver\": 7, \"recordTime\": 1e300}}"}) {
        nrt::kcc::setValue(nrt::kcc::pluginPerfix() + QStringLiteral("skyleaf/env_config_record"),
                           QLatin1String(text));
        nreadonce::resetForTest();
        EXPECT_FALSE(manager().retrieveEnvConfigRecord(file).isUsable()) << text;
        manager().updateEnvConfigRecord(QStringLiteral("other"), QStringLiteral("2"));
        EXPECT_TRUE(manager().retrieveEnvConfigRecord(QStringLiteral("other")).isUsable()) << text;
    }
}

TEST_F(Records, PackageRecordsAreReadFromTheStoreThatTheyWereWrittenTo)
{
    npackagerecords::setExpireTime(QStringLiteral("w"), QStringLiteral("1.2"), 1234567890123);
    npackagerecords::setMustUpgrade(QStringLiteral("w"), QStringLiteral("1.2"));
    npackagerecords::setCheckedVersion(QStringLiteral("w"), QStringLiteral("1.2"), QStringLiteral("1.3"));
    npackagerecords::setUserMissTag(QStringLiteral("u"), true);
    npackagerecords::setUserMissTag({}, true);
    EXPECT_EQ(npackagerecords::expireTime(QStringLiteral("w"), QStringLiteral("1.2")), 1234567890123);
    EXPECT_TRUE(npackagerecords::mustUpgrade(QStringLiteral("w"), QStringLiteral("1.2")));
    EXPECT_FALSE(npackagerecords::mustUpgrade(QStringLiteral("s"), QStringLiteral("1.2")));
    EXPECT_EQ(npackagerecords::checkedVersion(QStringLiteral("w"), QStringLiteral("1.2")),
              QStringLiteral("1.3"));

    const QSettings store(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Maravel"),
                          QStringLiteral("VLTCloud"));
    EXPECT_EQ(store.value(QStringLiteral("usercenter/docsOfflinePage/w/expireTime/1.2")).toLongLong(),
              1234567890123);
    EXPECT_TRUE(store.value(QStringLiteral("usercenter/u/docsOfflinePage/userMissTag")).toBool());
}

TEST_F(Records, TheVersionCheckCacheForgetsAfterItsDays)
{
    setItem(62377, R"({"vcsCacheExpiredDays": 2})");
    nversioncheckcache::set(file, QStringLiteral("w"));
    nversioncheckcache::set(QStringLiteral("none"), QString());
    restart();
    setNow(noon.addDays(1));
    EXPECT_EQ(nversioncheckcache::get(file), QStringLiteral("w"));
    EXPECT_TRUE(nversioncheckcache::get(QStringLiteral("none")).isEmpty());
    setNow(noon.addDays(2));
    EXPECT_TRUE(nversioncheckcache::get(file).isEmpty()) << "its last day has come";
    setNow(noon);
    EXPECT_TRUE(nversioncheckcache::get(file).isEmpty()) << "removed for good";
}

TEST_F(Records, LoadingTheVersionCheckCacheDropsWhatIsNotWhole)
{
    const QDate today(2026, 3, 10);
    const auto entry = [](const QVariant& type, const QVariant& date) {
        return QVariantMap{{QStringLiteral("officeType"), type}, {QStringLiteral("expiredDate"), date}};
    };
    const QVariantMap entries{{QStringLiteral("good"), entry(QStringLiteral("w"), today.addDays(1))},
                              {QStringLiteral("today"), entry(QStringLiteral("w"), today)},
                              {QStringLiteral("noType"), entry(QString(), today.addDays(1))},
                              {QStringLiteral("noDate"), entry(QStringLiteral("w"), QStringLiteral("soon"))},
                              {QString(), entry(QStringLiteral("w"), today.addDays(1))},
                              {QStringLiteral("text"), QStringLiteral("w")}};
    EXPECT_EQ(nversioncheckcache::cleaned(entries, today).keys(), QStringList{QStringLiteral("good")});
}

TEST_F(Records, OpensAreCountedByDayAndKindForSomeDays)
{
    setItem(55884, R"({"recordExpiredDays": 2})");
    QStringList told;
    const auto notice = [&told](const QString& used) { told << used; };
    const auto counts = [](const QDate& day) {
        return NOpenUsageRecord::openOnlineFile().content().value(QString::number(day.toJulianDay())).toMap();
    };
    const auto record = [&](const char* url, const char* key) {
        NOpenUsageRecord::openOnlineFile().record(QLatin1String(url), QLatin1String(key), notice);
    };
    record("https://d.test/p/1?officeType=w", "");
    record("https://d.test/p/1?officeType=w", "s");
    record("https://d.test/p/1", "");
    const QString feature = QStringLiteral("cloudDocsPreCreateBrowser");
    EXPECT_EQ(told, (QStringList{feature, feature}));
    const QVariantMap first{{QStringLiteral("total"), 2}, {QStringLiteral("w"), 1}, {QStringLiteral("s"), 1}};
    EXPECT_EQ(counts(noon.date()), first);

    restart();
    setItem(55884, R"({"recordExpiredDays": 2})");
    setNow(noon.addDays(1));
    record("", "w");
    EXPECT_EQ(counts(noon.date()), first) << "yesterday is kept";
    setNow(noon.addDays(2));
    record("", "w");
    EXPECT_TRUE(counts(noon.date()).isEmpty());
    EXPECT_EQ(counts(noon.date().addDays(1)).value(QStringLiteral("total")).toInt(), 1);
}

} // namespace
