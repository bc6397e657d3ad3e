#include "TestFiles.h"
#include "vltcloudsvr/functions/DocumentFunctions.h"

#include <gmock/gmock.h>

#include <QJsonDocument>
#include <QTemporaryDir>

namespace {

using namespace testfiles;
using namespace vlt::cloudsvr;

class LocalDocuments : public testing::Test
{
protected:
    void open()
    {
        documents.emplace(recordsFile, [this] { return now; });
    }
    void SetUp() override { open(); }

    QString create(const char* file = "f1") { return create(anna, file); }
    QString create(const Caller& caller, const char* file)
    {
        const CallResult made = documents->create(caller, {{s("fileId"), s(file)}});
        EXPECT_EQ(made.code, ResultCode::Ok) << qPrintable(made.values.value(s("error")));
        return made.values.value(s("localId"));
    }
    CallResult update(const QString& localId, const char* changes)
    {
        return documents->update(anna, {{s("localId"), localId}, {s("data"), s(changes)}});
    }
    QJsonObject data(const CallResult& result) const
    {
        return QJsonDocument::fromJson(result.values.value(s("data")).toUtf8()).object();
    }
    QString package(const QString& localId) const { return anna.localDataDir + s("/quillfile/") + localId; }

    QTemporaryDir directory;
    qint64 now = 1'700'000'000'123;
    const QString recordsFile = directory.filePath(s("records.sqlite"));
    const Caller anna{s("anna"), directory.filePath(s("anna")), {}, {}};
    const Caller bert{s("bert"), directory.filePath(s("bert")), {}, {}};
    const Caller nobody{{}, directory.filePath(s("nobody")), {}, {}};
    std::optional<DocumentFunctions> documents;
};

TEST_F(LocalDocuments, AreMadeOnceForAFileAndKeptAcrossRestarts)
{
    const QString localId = create();
    EXPECT_TRUE(localId.contains(QRegularExpression(s("^[0-9a-f]{32}$"))));
    EXPECT_EQ(tree(package(localId)), QStringList({s("cache"), s("sync")}));
    QDir(package(localId)).removeRecursively();
    open();
    now += 5;
    EXPECT_EQ(create(), localId);
    EXPECT_EQ(tree(package(localId)), QStringList({s("cache"), s("sync")})) << "made again";

    const CallResult byFile = documents->get(anna, {{s("fileId"), s("f1")}});
    const CallResult byId = documents->get(anna, {{s("localId"), localId}, {s("fileId"), s("other")}});
    EXPECT_EQ(byFile.values, byId.values);
    const QJsonObject expected{{s("localId"), localId},         {s("fileId"), s("f1")},
                               {s("createTimeL"), now - 5},     {s("accessTimeL"), now - 5},
                               {s("modifyTimeL"), now - 5},     {s("pkgSyncPath"), s("/sync")},
                               {s("pkgCachePath"), s("/cache")}};
    EXPECT_EQ(data(byFile), expected);
    EXPECT_TRUE(byFile.values.value(s("data")).contains(s(":1700000000123"))) << "a time is no fraction";
}

TEST_F(LocalDocuments, OfOneUserAreNotThoseOfAnother)
{
    const QString annas = create(anna, "f1");
    const QString berts = create(bert, "f1");
    const QString nobodys = create(nobody, "f1");
    EXPECT_EQ(QSet<QString>({annas, berts, nobodys}).size(), 3);
    EXPECT_EQ(documents->get(bert, {{s("localId"), annas}}).code, ResultCode::NotFound);
    EXPECT_EQ(documents->remove(nobody, {{s("localId"), annas}}).code, ResultCode::NotFound);
    EXPECT_EQ(documents->get(anna, {{s("fileId"), s("f1")}}).values.value(s("localId")), annas);
}

TEST_F(LocalDocuments, TakeChangesMemberByMember)
{
    const QString localId = create();
    EXPECT_EQ(update(localId, R"({"extends": "e30=", "title": "T", "modifyTimeL": 5})").code, ResultCode::Ok);
    const CallResult merged =
        update(localId, R"({"title": null, "none": null, "fileId": "f1", "n": {"a": 1}})");
    EXPECT_EQ(merged.code, ResultCode::Ok);
    const QJsonObject kept = data(documents->get(anna, {{s("localId"), localId}}));
    EXPECT_EQ(data(merged), kept);
    EXPECT_EQ(kept.value(s("extends")), s("e30="));
    EXPECT_EQ(kept.value(s("modifyTimeL")), 5);
    EXPECT_EQ(kept.value(s("n")).toObject().value(s("a")), 1);
    EXPECT_FALSE(kept.contains(s("title")) || kept.contains(s("none")));

    for (const char* refused :
         {"", "[1]", "{", R"({"localId": "x"})", R"({"fileId": null})", R"({"createTimeL": "now"})",
          R"({"modifyTimeL": null})", R"({"pkgSyncPath": "/../x"})", R"({"pkgCachePath": "sync"})",
          R"({"title": "kept?", "localId": 1})"})
        EXPECT_EQ(update(localId, refused).code, ResultCode::BadArgument) << refused;
    EXPECT_EQ(data(documents->get(anna, {{s("localId"), localId}})), kept);
}

TEST_F(LocalDocuments, RefuseWhatCannotBe)
{
    const Caller nowhere{s("anna"), {}, {}, {}};
    const Caller relative{s("anna"), s("here"), {}, {}};
    EXPECT_EQ(documents->create(anna, {}).code, ResultCode::BadArgument);
    EXPECT_EQ(documents->create(nowhere, {{s("fileId"), s("f1")}}).code, ResultCode::BadArgument);
    EXPECT_EQ(documents->create(relative, {{s("fileId"), s("f1")}}).code, ResultCode::BadArgument);
    EXPECT_EQ(documents->get(anna, {}).code, ResultCode::BadArgument);
    EXPECT_EQ(documents->get(anna, {{s("fileId"), s("f1")}}).code, ResultCode::NotFound);
    EXPECT_EQ(update(s("../x"), "{}").code, ResultCode::NotFound);
    EXPECT_EQ(documents->remove(anna, {{s("localId"), s("..")}}).code, ResultCode::NotFound);
    // A file where the package should be.
    write(anna.localDataDir + s("/quillfile"), "x");
    EXPECT_EQ(documents->create(anna, {{s("fileId"), s("f1")}}).code, ResultCode::StorageError);
    EXPECT_EQ(documents->get(anna, {{s("fileId"), s("f1")}}).code, ResultCode::NotFound);
}

TEST_F(LocalDocuments, AreRemovedWithTheirFilesAndNoOthers)
{
    const QString localId = create();
    const QString outside = directory.filePath(s("outside"));
    write(outside + s("/precious"), "p");
    write(package(localId) + s("/sync/deep/file"), "x");
    QFile::link(outside, package(localId) + s("/sync/link"));
    QFile::link(outside + s("/precious"), package(localId) + s("/link"));
    EXPECT_EQ(documents->remove(anna, {{s("localId"), localId}}).code, ResultCode::Ok);
    EXPECT_FALSE(QFileInfo::exists(package(localId)));
    EXPECT_EQ(read(outside + s("/precious")), QByteArray("p"));
    EXPECT_EQ(documents->remove(anna, {{s("localId"), localId}}).code, ResultCode::NotFound);
    EXPECT_NE(create(), localId);
    // A package directory that is a link to somewhere else goes, what it leads to stays.
    const QString linked = create("f2");
    QDir(package(linked)).removeRecursively();
    QFile::link(outside, package(linked));
    EXPECT_EQ(documents->remove(anna, {{s("localId"), linked}}).code, ResultCode::Ok);
    EXPECT_EQ(read(outside + s("/precious")), QByteArray("p"));
}

TEST_F(LocalDocuments, StartAnewBesideADamagedFileButLeaveOneOfALaterVersionAlone)
{
    documents.reset();
    write(recordsFile, QByteArray(8192, 'x'));
    open();
    const QString localId = create();
    EXPECT_EQ(read(recordsFile + s(".corrupt")), QByteArray(8192, 'x'));
    documents.reset();

    // The schema's version lies at byte 60 of a SQLite file.
    QFile file(recordsFile);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.seek(63);
    file.putChar(99);
    file.close();
    open();
    EXPECT_EQ(documents->get(anna, {{s("localId"), localId}}).code, ResultCode::StorageError);
    file.open(QIODevice::ReadWrite);
    file.seek(63);
    file.putChar(1);
    file.close();
    EXPECT_EQ(documents->get(anna, {{s("localId"), localId}}).code, ResultCode::Ok);
}

} // namespace
