#include "zeolite/collect/DataCollection.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>

namespace {

class Collection : public testing::Test
{
protected:
    void post(const QString& name) { collection.postGeneralEvent(name, NDcFields(), 0, 0, 1, true); }

    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("events.jsonl"));
    std::atomic<qint64> now{1000};
    DataCollection collection{path, QStringLiteral("machine"), [this] { return now++; }};
};

TEST_F(Collection, KeepsOneOrderAcrossThreadsInMemoryFileAndObservers)
{
    std::vector<QJsonObject> observed;
    collection.addObserver([&observed](const DcEvent& event) { observed.push_back(event.toJson()); });
    const auto postMany = [this](const QString& who) {
        for (int i = 0; i < 100; ++i) {
            const NDcFields fields = {{QStringLiteral("who"), who},
                                      {QStringLiteral("i"), QString::number(i)}};
            collection.postGeneralEvent(QStringLiteral("step"), fields, 0, 0, 1, true);
        }
    };
    std::thread a(postMany, QStringLiteral("a"));
    std::thread b(postMany, QStringLiteral("b"));
    a.join();
    b.join();

    const std::vector<DcEvent> kept = collection.events();
    ASSERT_EQ(kept.size(), 200U);
    ASSERT_EQ(observed.size(), 200U);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QMap<QString, int> next;
    for (std::size_t i = 0; i < kept.size(); ++i) {
        EXPECT_EQ(kept[i].t, 1000 + static_cast<qint64>(i)) << "the time goes with the order";
        EXPECT_EQ(observed[i], kept[i].toJson());
        const QJsonObject line = QJsonDocument::fromJson(file.readLine()).object();
        EXPECT_EQ(line.value(QLatin1String("fields")), observed[i].value(QLatin1String("fields")));
        EXPECT_EQ(line.value(QLatin1String("t")), observed[i].value(QLatin1String("t")));
        int& expected = next[kept[i].fields.value(QStringLiteral("who"))];
        EXPECT_EQ(kept[i].fields.value(QStringLiteral("i")).toInt(), expected++);
    }
    EXPECT_TRUE(file.atEnd());
}

TEST_F(Collection, WritesArgumentsWithTheEvent)
{
    collection.postGeneralEvent(QStringLiteral("open"),
                                NDcOrderedFields{{QStringLiteral("k"), QStringLiteral("ü\n")}}, 4, 5, 100);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("{\"arguments\":[4,5],\"fields\":{\"k\":\"ü\\n\"},\"flag\":false,"
                                         "\"name\":\"open\",\"probability\":100,\"t\":1000}\n"));
}

TEST_F(Collection, KeepsTheLatestInMemory)
{
    DataCollection inMemory({}, {}, [] { return 0; });
    for (std::size_t i = 0; i < DataCollection::keptEvents + 5; ++i)
        inMemory.postGeneralEvent(QString::number(i), NDcFields(), 0, 0, 1, true);
    const std::vector<DcEvent> kept = inMemory.events();
    ASSERT_EQ(kept.size(), DataCollection::keptEvents);
    EXPECT_EQ(kept.front().name, QStringLiteral("5"));
}

TEST_F(Collection, ObserverMayPostAndBeRemoved)
{
    QStringList seen;
    const int poster = collection.addObserver([this](const DcEvent& event) {
        if (event.name == QLatin1String("outer"))
            post(QStringLiteral("inner"));
    });
    collection.addObserver([&seen](const DcEvent& event) { seen.append(event.name); });
    post(QStringLiteral("outer"));
    collection.removeObserver(poster);
    post(QStringLiteral("outer"));
    EXPECT_EQ(seen.join(QLatin1Char(' ')), QStringLiteral("outer inner outer"));
}

TEST_F(Collection, SamplesUsersStably)
{
    DataCollection other({}, QStringLiteral("another machine"), [] { return 0; });
    int sampled = 0;
    for (int user = 0; user < 2000; ++user) {
        const QString id = QString::number(user);
        collection.setUserId(id);
        other.setUserId(id);
        EXPECT_TRUE(collection.canSendByCurUser(1, true));
        EXPECT_FALSE(collection.canSendByCurUser(0, true));
        const bool chosen = collection.canSendByCurUser(10, true);
        EXPECT_EQ(other.canSendByCurUser(10, true), chosen) << "by the user, whatever the machine";
        sampled += chosen ? 1 : 0;
    }
    EXPECT_NEAR(sampled, 200, 60);
}

} // namespace
