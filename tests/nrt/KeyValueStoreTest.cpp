#include <gmock/gmock.h>

#include <thread>

#include <QCryptographicHash>
#include <QDate>
#include <QDir>
#include <QFile>
#include <QObject>
#include <QTemporaryDir>

#include "KilledWriter.h"
#include "nrt/KeyValueFile.h"
#include "nrt/NrtHost.h"
#include "nrt/kcc.h"
#include "support/OddFiles.h"

namespace {

class KeyValueStore : public testing::Test
{
protected:
    void SetUp() override
    {
        nrt::host::Setup setup;
        setup.dataDir = directory.path();
        nrt::host::configure(setup);
    }

    QString storePath() const { return directory.filePath(QStringLiteral("kcc.store")); }
    QByteArray storeBytes() const
    {
        QFile file(storePath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir directory;
    const QString key = nrt::kcc::pluginPerfix() + QStringLiteral("skyleaf/key");
};

TEST_F(KeyValueStore, KeepsTheTypeOfValuesOnDisk)
{
    const QVariantList values = {
        true,
        7,
        QStringLiteral("täxt"),
        QDate(2024, 2, 29),
        QVariantMap{{QStringLiteral("list"), QVariantList{1, false, QStringLiteral("x")}}},
        QByteArray("\0\xff", 2),
        QDateTime(QDate(2024, 1, 1), QTime(1, 2, 3), Qt::UTC)};
    for (const QVariant& value : values) {
        nrt::kcc::setValue(key, value);
        const QVariant fromDisk = nrt::KeyValueFile(storePath()).value(key);
        EXPECT_EQ(fromDisk.userType(), value.userType());
        EXPECT_EQ(fromDisk, value) << value.typeName();
    }
    EXPECT_EQ(nrt::kcc::value(QStringLiteral("missing"), 3), QVariant(3));
}

TEST_F(KeyValueStore, SurvivesAKill)
{
    const int last = lastNumberOfKilledWriter(QStringLiteral("kcc"), directory.path(), 50);
    ASSERT_GE(last, 50);
    // The kill may fall between storing a number and saying so.
    EXPECT_GE(nrt::kcc::flushRead(QStringLiteral("counter")).toInt(), last);
    EXPECT_FALSE(QFile::exists(storePath() + QStringLiteral(".corrupt")));
    nrt::kcc::setValue(key, 1); // a lock left behind does not bar the next process
    EXPECT_EQ(nrt::KeyValueFile(storePath()).value(key), QVariant(1));
}

TEST_F(KeyValueStore, SetsADamagedFileAside)
{
    nrt::kcc::setValue(key, QStringLiteral("valuable"));
    const QByteArray good = storeBytes();
    QByteArray flipped = good;
    flipped[good.size() - 3] = static_cast<char>(~flipped.at(good.size() - 3));
    for (const QByteArray& bad : {QByteArray(), QByteArray("garbage"), good.left(good.size() - 1), flipped}) {
        QFile file(storePath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bad);
        file.close();

        nrt::KeyValueFile store(storePath());
        EXPECT_FALSE(store.value(key).isValid());
        QFile aside(storePath() + QStringLiteral(".corrupt"));
        ASSERT_TRUE(aside.open(QIODevice::ReadOnly));
        EXPECT_EQ(aside.readAll(), bad);
        EXPECT_TRUE(store.setValue(key, 1));
        EXPECT_EQ(nrt::KeyValueFile(storePath()).value(key), QVariant(1));
    }
}

TEST_F(KeyValueStore, WhatIsNoFileIsSetAsideUnlessItIsAFolder)
{
    for (const char* place : {"kcc.store", "kcc.store.lock"}) {
        for (const OddFile& odd : oddFiles) {
            ASSERT_TRUE(putOddFile(odd, directory.filePath(QLatin1String(place)))) << place << odd.name;
            const bool isBlocked = QFileInfo(storePath()).isDir();
            nrt::KeyValueFile store(storePath());
            EXPECT_FALSE(store.value(key).isValid());
            EXPECT_EQ(store.setValue(key, 1), !isBlocked) << place << odd.name;
            EXPECT_EQ(store.value(key), QVariant(1)) << place << odd.name;
            EXPECT_EQ(nrt::KeyValueFile(storePath()).value(key).isValid(), !isBlocked) << place << odd.name;
            QDir(storePath()).removeRecursively();
            QFile::remove(storePath());
            QFile::remove(storePath() + QStringLiteral(".lock"));
            QDir(storePath() + QStringLiteral(".lock")).removeRecursively();
        }
    }
}

TEST_F(KeyValueStore, AFileThatAsksForMoreThanItHoldsIsDamaged)
{
    QVariant deep;
    for (int i = 0; i < 200; ++i)
        deep = QVariantList{deep};
    EXPECT_FALSE(nrt::isStorable(deep));
    const QByteArray variantList = QByteArray::fromHex("00000009 00 ffffffff");
    const QByteArray picture = QByteArray::fromHex("00000046 00 00000000");
    const QByteArray noZone = QByteArray::fromHex("00000010 00 0000000000258960 00ffffff ff");
    for (const QByteArray& value : {variantList, picture, noZone}) {
        const QByteArray payload = QByteArray::fromHex("00000001 00000002 0061") + value;
        const QByteArray file =
            "NKCC1\n" + QCryptographicHash::hash(payload, QCryptographicHash::Sha256) + payload;
        EXPECT_FALSE(nrt::decodeKeyValues(file)) << value.toHex().constData();
    }
    EXPECT_FALSE(nrt::decodeKeyValues(nrt::encodeKeyValues({{key, deep}})));
}

TEST_F(KeyValueStore, DoesNotGrowBeyondWhatIsRead)
{
    nrt::KeyValueFile store(storePath());
    EXPECT_TRUE(store.setValue(key, 1));
    EXPECT_FALSE(store.setValue(QStringLiteral("large"), QByteArray(65 << 20, 'x'))) << "in memory only";
    EXPECT_EQ(store.value(QStringLiteral("large")).toByteArray().size(), 65 << 20);
    EXPECT_EQ(nrt::KeyValueFile(storePath()).value(key), QVariant(1));
}

TEST_F(KeyValueStore, SharesTheFileWithOtherWriters)
{
    EXPECT_EQ(nrt::kcc::value(key, 0), QVariant(0));
    nrt::KeyValueFile(storePath()).setValue(key, 5);
    EXPECT_EQ(nrt::kcc::value(key, 0), QVariant(0)) << "as last seen";
    EXPECT_EQ(nrt::kcc::flushRead(key, 0), QVariant(5));

    const auto writeKeys = [this](const QString& prefix) {
        nrt::KeyValueFile store(storePath());
        for (int i = 0; i < 25; ++i)
            store.setValue(prefix + QString::number(i), i);
    };
    std::thread other(writeKeys, QStringLiteral("a"));
    writeKeys(QStringLiteral("b"));
    other.join();
    const nrt::KeyValueFile store(storePath());
    for (int i = 0; i < 25; ++i) {
        EXPECT_EQ(store.value(QStringLiteral("a%1").arg(i)), QVariant(i));
        EXPECT_EQ(store.value(QStringLiteral("b%1").arg(i)), QVariant(i));
    }
    EXPECT_EQ(store.value(key), QVariant(5));
}

TEST_F(KeyValueStore, KeepsInMemoryWhatCannotBeStored)
{
    QObject object;
    const QVariant pointer = QVariant::fromValue(&object);
    nrt::kcc::setValue(key, pointer);
    EXPECT_EQ(nrt::kcc::flushRead(key), pointer);
    nrt::kcc::setValue(QStringLiteral("other"), 1);
    EXPECT_EQ(nrt::kcc::value(key), pointer);
    EXPECT_FALSE(nrt::KeyValueFile(storePath()).value(key).isValid());

    nrt::KeyValueFile blocked(directory.path()); // a directory is no file
    EXPECT_FALSE(blocked.setValue(key, 1));
    EXPECT_EQ(blocked.value(key), QVariant(1));
}

} // namespace
