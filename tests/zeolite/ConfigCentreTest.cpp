#include "zeolite/config/ConfigCentre.h"

#include <gmock/gmock.h>

#include <cstdio>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest/QTest>

#include "support/LogRecorder.h"
#include "support/OddFiles.h"

namespace {

constexpr int patienceMs = 10000;

class Centre : public testing::Test
{
protected:
    Centre()
    {
        write("{\"configCentre\": {\"60\": {\"1\": {\"v\": 1}, \"2\": {\"v\": 2}}}, \"mainDomain\": \"x\"}");
    }

    void write(const QByteArray& bytes) const { writeTo(path, bytes); }
    void replace(const QByteArray& bytes) const
    {
        writeTo(path + QStringLiteral(".new"), bytes);
        std::rename(QFile::encodeName(path + QStringLiteral(".new")).constData(),
                    QFile::encodeName(path).constData());
    }
    static void writeTo(const QString& where, const QByteArray& bytes)
    {
        QFile file(where);
        file.open(QIODevice::WriteOnly);
        file.write(bytes);
    }

    void watch(ConfigCentre& centre, int item)
    {
        centre.addWatch(60, item, &context, [this](qint64 group, qint64 changed) {
            calls.append(QStringLiteral("%1/%2").arg(group).arg(changed));
        });
    }
    bool waitForCalls(const QStringList& expected)
    {
        const bool arrived = QTest::qWaitFor([&] { return calls.size() >= expected.size(); }, patienceMs);
        const bool matches = arrived && calls == expected;
        calls.clear();
        return matches;
    }
    static int value(const ConfigCentre& centre, int item)
    {
        const QList<NFpccombData> data = centre.getData(60, item);
        return data.isEmpty() ? -1 : data.first().map().value(QStringLiteral("v")).toInt();
    }

    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("host.json"));
    QObject context;
    QStringList calls;
};

TEST_F(Centre, TellsEveryKindOfChangeOfTheFile)
{
    ConfigCentre centre(path, {});
    for (int item : {1, 2, 3})
        watch(centre, item);
    EXPECT_EQ(value(centre, 1), 1);
    EXPECT_EQ(value(centre, 3), -1);

    write("{\"configCentre\": {\"60\": {\"1\": {\"v\": 11}, \"2\": {\"v\": 2}}}}");
    EXPECT_TRUE(waitForCalls({QStringLiteral("60/1")}));
    replace("{\"configCentre\": {\"60\": {\"1\": {\"v\": 11}, \"3\": {\"v\": 3}}}}");
    EXPECT_TRUE(waitForCalls({QStringLiteral("60/2"), QStringLiteral("60/3")}));
    EXPECT_EQ(value(centre, 2), -1);
    // The file that took the place is watched as well.
    write("{\"configCentre\": {\"60\": {\"1\": {\"v\": 12}, \"3\": {\"v\": 3}}}}");
    EXPECT_TRUE(waitForCalls({QStringLiteral("60/1")}));
    QFile::remove(path);
    write("{}");
    EXPECT_TRUE(waitForCalls({QStringLiteral("60/1"), QStringLiteral("60/3")}));
}

TEST_F(Centre, KeepsTheLastGoodDataWhileTheFileIsWrong)
{
    const LogRecorder log;
    ConfigCentre centre(path, {});
    watch(centre, 1);
    int complaints = 0;
    for (const char* wrong :
         {"{\"configCentre\": {\"60\"", "[]", "{\"configCentre\": 1}", "{\"configCentre\": {\"x\": {}}}",
          "{\"configCentre\": {\"60\": []}}", "{\"configCentre\": {\"60\": {\"1\": 5}}}",
          "{\"configCentre\": {\"60\": {\"-1\": {}}}}"}) {
        replace(wrong);
        ++complaints;
        ASSERT_TRUE(QTest::qWaitFor([&] { return log.lines().size() >= complaints; }, patienceMs)) << wrong;
        EXPECT_EQ(value(centre, 1), 1) << wrong;
    }
    for (const QString& line : log.lines())
        EXPECT_TRUE(line.startsWith(QLatin1String("warning [zeolite] configuration centre: ")))
            << qPrintable(line);
    for (const OddFile& odd : oddFiles) {
        ASSERT_TRUE(putOddFile(odd, path));
        EXPECT_EQ(value(ConfigCentre(path, {}), 1), -1) << odd.name;
        EXPECT_GT(log.lines().size(), complaints) << odd.name;
        QDir(path).removeRecursively();
    }
    EXPECT_TRUE(calls.isEmpty());
    replace("{\"configCentre\": {\"60\": {\"1\": {\"v\": 7}}}}");
    EXPECT_TRUE(waitForCalls({QStringLiteral("60/1")}));
    EXPECT_EQ(value(centre, 1), 7);
}

TEST_F(Centre, SetItemsStandUntilTheFileChangesThem)
{
    ConfigCentre centre(path, {});
    for (int item : {1, 2})
        watch(centre, item);
    centre.set(60, 1, {{QStringLiteral("v"), 100}});
    centre.set(60, 2, {{QStringLiteral("v"), 2}}); // as it is
    EXPECT_TRUE(waitForCalls({QStringLiteral("60/1")}));

    replace("{\"configCentre\": {\"60\": {\"1\": {\"v\": 1}, \"2\": {\"v\": 22}}}}");
    EXPECT_TRUE(waitForCalls({QStringLiteral("60/2")}));
    EXPECT_EQ(value(centre, 1), 100);
    replace("{\"configCentre\": {\"60\": {\"1\": {\"v\": 5}, \"2\": {\"v\": 22}}}}");
    EXPECT_TRUE(waitForCalls({QStringLiteral("60/1")}));
    EXPECT_EQ(value(centre, 1), 5);
}

TEST_F(Centre, WatchesEndWithTheirContextAndWhenRemovedMeanwhile)
{
    ConfigCentre centre({}, {});
    QObject remover;
    centre.addWatch(60, 1, &remover, [&](qint64, qint64) { centre.removeWatch(60, 1, &context); });
    watch(centre, 1);
    auto shortLived = std::make_unique<QObject>();
    centre.addWatch(60, 2, shortLived.get(),
                    [this](qint64, qint64) { calls.append(QStringLiteral("late")); });
    shortLived.reset();
    centre.set(60, 1, {{QStringLiteral("v"), 1}});
    centre.set(60, 2, {{QStringLiteral("v"), 1}});
    EXPECT_TRUE(calls.isEmpty());
}

TEST_F(Centre, TellsOnceThatAGroupHasFinished)
{
    ConfigCentre centre(path, {60});
    QStringList finished;
    QObject removed;
    const auto note = [&finished](qint64 group, qint64 item) {
        finished.append(QStringLiteral("%1/%2").arg(group).arg(item));
    };
    centre.addInitFinishedWatch(60, &context, note);
    centre.addInitFinishedWatch(60, &removed, note);
    centre.removeInitFinishedWatch(60, &removed);
    EXPECT_FALSE(centre.hasInitFinished(60));
    EXPECT_TRUE(centre.hasInitFinished(61));
    centre.finishInit(60);
    centre.finishInit(60);
    EXPECT_EQ(finished, QStringList(QStringLiteral("60/0")));

    centre.addInitFinishedWatch(61, &context, note); // has finished before
    EXPECT_TRUE(QTest::qWaitFor([&] { return finished.contains(QStringLiteral("61/0")); }, patienceMs));
    EXPECT_EQ(finished.size(), 2);
}

} // namespace
