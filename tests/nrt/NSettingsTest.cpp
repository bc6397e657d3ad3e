#include "nrt/NSettings.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "KilledWriter.h"
#include "nrt/FileLock.h"
#include "nrt/NrtHost.h"
#include "support/OddFiles.h"

namespace {

class Settings : public testing::Test
{
protected:
    void SetUp() override
    {
        nrt::host::Setup setup;
        setup.dataDir = directory.path();
        setup.settings.insert(QStringLiteral("usercenter/docsOfflinePage/reportPb"), 100);
        nrt::host::configure(setup);
    }

    QString filePath(const QString& application) const
    {
        return directory.filePath(QStringLiteral("settings/Maravel/%1.conf").arg(application));
    }

    QTemporaryDir directory;
};

TEST_F(Settings, AnswerStoredThenDeployedThenDefault)
{
    nrt::NVLTCloudSettings settings;
    settings.beginGroup(QStringLiteral("usercenter"));
    settings.beginGroup(QStringLiteral("docsOfflinePage"));
    const QString key = QStringLiteral("reportPb");
    EXPECT_EQ(settings.value(key, 1).toInt(), 100);
    EXPECT_EQ(settings.value(QStringLiteral("other"), 1).toInt(), 1);

    settings.setValue(key, 1000);
    EXPECT_EQ(settings.value(key, 1).toInt(), 1000);
    nrt::NVLTCloudSettings again;
    EXPECT_EQ(again.value(QStringLiteral("usercenter/docsOfflinePage/reportPb")).toInt(), 1000);
    settings.remove(key);
    EXPECT_EQ(settings.value(key, 1).toInt(), 100);

    settings.endGroup();
    EXPECT_EQ(settings.value(QStringLiteral("docsOfflinePage/reportPb")).toInt(), 100);
    EXPECT_FALSE(nrt::NCCPluginsSettings().value(key).isValid()) << "stores are apart";
}

TEST_F(Settings, SurviveAKill)
{
    const int last = lastNumberOfKilledWriter(QStringLiteral("settings"), directory.path(), 50);
    ASSERT_GE(last, 50);
    EXPECT_GE(nrt::NCCCommonSettings().value(QStringLiteral("counter")).toInt(), last);
}

TEST_F(Settings, AreNotHeldUpByALockWithoutOwner)
{
    const QString path = directory.filePath(QStringLiteral("settings.lock"));
    QFile lock(path);
    ASSERT_TRUE(lock.open(QIODevice::WriteOnly)); // what a kill right after making it leaves behind
    {
        const nrt::FileLock owner(path, 0);
        nrt::removeAbandonedLockFile(path, 1);
        EXPECT_TRUE(QFile::exists(path)) << "its owner lives";
    }
    lock.write("123");
    lock.flush();
    nrt::removeAbandonedLockFile(path, 1);
    EXPECT_TRUE(QFile::exists(path)) << "it names its owner";
    lock.resize(0);
    nrt::removeAbandonedLockFile(path, 1);
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(Settings, WhatIsNoFileIsSetAside)
{
    const QString path = filePath(QStringLiteral("Common"));
    const QString key = QStringLiteral("key");
    for (const OddFile& odd : oddFiles) {
        nrt::NCCCommonSettings().setValue(key, 1);
        nrt::NCCCommonSettings open;
        ASSERT_TRUE(putOddFile(odd, path)) << odd.name;
        EXPECT_EQ(nrt::NCCCommonSettings().value(key, 0).toInt(), 0) << odd.name;
        if (QFileInfo(path).isDir()) {
            open.setValue(key, 2);
            EXPECT_EQ(open.value(key).toInt(), 2) << "in memory";
            EXPECT_TRUE(QDir(path).removeRecursively());
            continue;
        }
        ASSERT_TRUE(putOddFile(odd, path)) << odd.name;
        open.setValue(key, 2);
        EXPECT_EQ(nrt::NCCCommonSettings().value(key).toInt(), 2) << odd.name;
    }
}

TEST_F(Settings, KeepACopyOfADamagedFile)
{
    nrt::NCCCommonSettings().setValue(QStringLiteral("good"), 1);
    QFile file(filePath(QStringLiteral("Common")));
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("[broken\nno line of settings\n");
    file.close();

    nrt::NCCCommonSettings().setValue(QStringLiteral("new"), 2);
    EXPECT_EQ(nrt::NCCCommonSettings().value(QStringLiteral("good")).toInt(), 1);
    EXPECT_EQ(nrt::NCCCommonSettings().value(QStringLiteral("new")).toInt(), 2);
    QFile copy(file.fileName() + QStringLiteral(".corrupt"));
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
    EXPECT_TRUE(copy.readAll().contains("[broken"));
}

} // namespace
