#include "store/DocumentStore.h"

#include <gmock/gmock.h>

#include <QDir>

#include <csignal>
#include <sys/resource.h>

#include "support/TemporarySite.h"

namespace documents {
namespace {

class DocumentStoreTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_FALSE(store.open()); }

    QString fileOf(const char* id) const
    {
        return place.documents() + u'/' + QLatin1String(id) + QLatin1String(".json");
    }

    TemporarySite place;
    qint64 now = 1'700'000'000'123;
    DocumentStore store{place.documents(), [this] { return now; }};
};

const QJsonObject someContent{{QStringLiteral("text"), QStringLiteral("äöü 🌿")}};

TEST_F(DocumentStoreTest, fillsAnEmptyDirectoryOnce)
{
    const auto summaries = store.list();
    ASSERT_EQ(summaries.size(), 2);
    EXPECT_EQ(summaries[0].name, QStringLiteral("Welcome.docx"));
    EXPECT_EQ(summaries[1].name, QStringLiteral("Budget.xlsx"));
    EXPECT_EQ(summaries[0].modified, now);

    QFile::remove(fileOf("100001"));
    ASSERT_FALSE(store.open());
    EXPECT_EQ(store.list().size(), 1) << "a document that was deleted must not come back";
}

TEST_F(DocumentStoreTest, savesOnTopOfTheCurrentVersionOnly)
{
    now += 5000;
    const auto saved = store.save(QStringLiteral("100001"), 1, someContent);
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->version, 2);

    const DocumentStore another(place.documents(), [] { return 0; });
    const auto loaded = another.load(QStringLiteral("100001"));
    ASSERT_TRUE(loaded);
    EXPECT_EQ(*loaded, *saved);
    EXPECT_EQ(loaded->content, someContent);
    EXPECT_EQ(loaded->modified, now);

    for (const qint64 stale : {1, 3}) {
        const auto refused = store.save(QStringLiteral("100001"), stale, {});
        ASSERT_FALSE(refused);
        EXPECT_EQ(refused.error().code, ErrorCode::VersionConflict);
    }
    EXPECT_EQ(store.load(QStringLiteral("100001"))->content, someContent);
    EXPECT_EQ(QDir(place.documents()).entryList(QDir::Files).size(), 2) << "no temporary file stays";
}

TEST_F(DocumentStoreTest, keepsTheDocumentWhenTheDiskTakesNoMore)
{
    const auto before = store.load(QStringLiteral("100001"));
    ASSERT_TRUE(before);
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit none{0, RLIM_INFINITY};
    rlimit usual{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &usual), 0);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &none), 0);
    const auto saved = store.save(QStringLiteral("100001"), before->version, someContent);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &usual), 0);
    EXPECT_FALSE(saved);
    const auto after = store.load(QStringLiteral("100001"));
    ASSERT_TRUE(after);
    EXPECT_EQ(*after, *before);
}

TEST_F(DocumentStoreTest, createsUnderTheNextFreeId)
{
    const auto created = store.create(QStringLiteral("s"), QStringLiteral("Plan"));
    ASSERT_TRUE(created);
    EXPECT_EQ(created->id, QStringLiteral("100003"));
    EXPECT_EQ(created->name, QStringLiteral("Plan.xlsx"));
    EXPECT_TRUE(created->content.contains(QStringLiteral("sheets")));
    EXPECT_EQ(*store.load(created->id), *created);

    writeFile(fileOf("200000"), "damaged");
    EXPECT_EQ(store.create(QStringLiteral("w"), {})->id, QStringLiteral("200001"))
        << "nothing is overwritten";
    EXPECT_EQ(store.load(QStringLiteral("200001"))->name, QStringLiteral("Untitled.docx"));
}

TEST_F(DocumentStoreTest, refusesBadNamesAndTypes)
{
    const QString longName(201, u'n');
    for (const QString& name :
         {QStringLiteral("a/b"), QStringLiteral("a\\b"), QStringLiteral("a\nb"), longName})
        EXPECT_EQ(store.create(QStringLiteral("w"), name).error().code, ErrorCode::Invalid)
            << qPrintable(name);
    EXPECT_EQ(store.create(QStringLiteral("word"), {}).error().code, ErrorCode::Invalid);
    EXPECT_EQ(store.list().size(), 2);
}

TEST_F(DocumentStoreTest, aDamagedFileHidesOnlyItself)
{
    const QByteArray good = readFile(fileOf("100001"));
    const QByteArray damages[] = {good.left(good.size() / 2),
                                  "[]",
                                  "",
                                  QByteArray(good).replace("\"version\":1", "\"version\":1.5"),
                                  QByteArray(good).replace("\"version\":1", "\"version\":\"1\""),
                                  QByteArray(good).replace("\"officeType\":\"w\"", "\"officeType\":\"x\""),
                                  QByteArray(good).replace("100001", "100009"),
                                  QByteArray(good).replace("Welcome.docx", "\xff")};
    for (const QByteArray& damage : damages) {
        writeFile(fileOf("100001"), damage);
        const auto loaded = store.load(QStringLiteral("100001"));
        ASSERT_FALSE(loaded) << damage.constData();
        EXPECT_EQ(loaded.error().code, ErrorCode::Damaged);
        EXPECT_EQ(store.save(QStringLiteral("100001"), 1, {}).error().code, ErrorCode::Damaged);
        EXPECT_EQ(store.list().size(), 1);
    }
}

TEST_F(DocumentStoreTest, onlyDigitsNameADocument)
{
    place.add("documents/abc.json", "{}");
    place.add("100001.json", readFile(fileOf("100001")));
    for (const char* id : {"", "abc", "../100001", "1000001234567890123", "100001.json", "-1", "١"})
        EXPECT_FALSE(store.contains(QString::fromUtf8(id))) << id;
    EXPECT_TRUE(store.contains(QStringLiteral("100001")));
}

} // namespace
} // namespace documents
