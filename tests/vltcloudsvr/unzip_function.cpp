#include "TestFiles.h"
#include "vltcloudsvr/archive/ZipExtractor.h"
#include "vltcloudsvr/functions/UnzipFunction.h"

#include <gmock/gmock.h>

#include <QTemporaryDir>

#include <sys/stat.h>

namespace {

using namespace testfiles;
using namespace vlt::cloudsvr;

class Unzip : public testing::Test
{
protected:
    void SetUp() override { QDir().mkpath(root); }

    ResultCode run(const QString& source, const QString& destination, bool compress = false,
                   bool removeZip = false)
    {
        const auto flag = [](bool on) { return on ? s("true") : s("false"); };
        return function(Caller{{}, directory.path(), {}, {}}, {{s("localId"), localId},
                                                               {s("isCompress"), flag(compress)},
                                                               {s("isRemoveZip"), flag(removeZip)},
                                                               {s("source"), source},
                                                               {s("destination"), destination}})
            .code;
    }

    QTemporaryDir directory;
    const QString localId = s("0123456789abcdef0123456789abcdef");
    const QString root = directory.filePath(s("quillfile/") + localId);
    const QString zip = root + s("/in.zip");
    UnzipFunction function{ArchiveLimits{1000, 10}};
};

TEST_F(Unzip, UnpacksMergesAndRemovesTheZipWhenTold)
{
    writeZip(zip, {{"a.txt", "new"}, {"d/", {}}, {"d/e/f.bin", QByteArray(300, '\1')}, {"ü.txt", "u"}});
    write(root + s("/out/a.txt"), "old");
    write(root + s("/out/d/kept"), "k");
    EXPECT_EQ(run(zip, root + s("/out")), ResultCode::Ok);
    EXPECT_EQ(tree(root + s("/out")),
              QStringList({s("a.txt"), s("d"), s("d/e"), s("d/e/f.bin"), s("d/kept"), s("ü.txt")}));
    EXPECT_EQ(read(root + s("/out/a.txt")), QByteArray("new"));
    EXPECT_TRUE(QFile::exists(zip));
    EXPECT_EQ(run(zip, root + s("/x/y"), false, true), ResultCode::Ok);
    EXPECT_FALSE(QFile::exists(zip));
    EXPECT_EQ(tree(root).filter(s(".unzip")), QStringList());
    EXPECT_EQ(read(root + s("/x/y/d/e/f.bin")), QByteArray(300, '\1'));
}

TEST_F(Unzip, PacksADirectoryTheOtherWayRound)
{
    write(root + s("/in/a"), "1");
    write(root + s("/in/.hidden/b"), "2");
    QDir().mkpath(root + s("/in/empty"));
    // The zip lies in what is packed, twice.
    EXPECT_EQ(run(root + s("/in"), root + s("/in/o.zip"), true), ResultCode::Ok);
    EXPECT_EQ(run(root + s("/in"), root + s("/in/o.zip"), true), ResultCode::Ok);
    EXPECT_EQ(run(root + s("/in/o.zip"), root + s("/out")), ResultCode::Ok);
    EXPECT_EQ(tree(root + s("/out")), QStringList({s(".hidden"), s(".hidden/b"), s("a"), s("empty")}));
    QFile::link(s("/etc/passwd"), root + s("/in/link"));
    EXPECT_EQ(run(root + s("/in"), root + s("/in/o.zip"), true), ResultCode::ArchiveError);
    EXPECT_EQ(run(root + s("/none"), root + s("/o.zip"), true), ResultCode::ArchiveError);
}

TEST_F(Unzip, RefusesAnArchiveWithOneBadEntryAsAWhole)
{
    const QByteArray tooLong(256, 'n');
    const std::vector<Entry> table = {{"../evil", "x"},
                                      {"a/../../evil", "x"},
                                      {"/evil", "x"},
                                      {"..\\evil", "x"},
                                      {"c:evil", "x"},
                                      {"a//b", "x"},
                                      {"./a", "x"},
                                      {tooLong.constData(), "x"},
                                      {"link", "/etc", S_IFLNK | 0777},
                                      {"device", "x", S_IFCHR | 0666},
                                      {"good", QByteArray(1000, '\0')}};
    for (const Entry& bad : table) {
        writeZip(zip, {{"first", "1"}, bad, {"last", "2"}});
        EXPECT_EQ(run(zip, root + s("/out")), ResultCode::ArchiveError) << bad.name;
        EXPECT_EQ(tree(root), QStringList({s("in.zip")})) << bad.name;
        EXPECT_FALSE(QFile::exists(directory.filePath(s("quillfile/evil"))));
    }
    std::vector<Entry> many;
    const QByteArray names("abcdefghijk");
    QVector<QByteArray> held;
    for (const char name : names)
        held.append(QByteArray(1, name));
    for (const QByteArray& name : held)
        many.push_back({name.constData(), {}});
    writeZip(zip, many);
    EXPECT_EQ(run(zip, root + s("/out")), ResultCode::ArchiveError) << "eleven entries";
}

TEST_F(Unzip, RefusesNamesWithNulSizesThatLieAndDamage)
{
    writeZip(zip, {{"name.txt", "data"}, {"other", QByteArray(500, 'o')}});
    const QByteArray good = *read(zip);
    QByteArray nul = good;
    nul.replace("name.txt", QByteArray("name\0txt", 8));
    QByteArray damaged = good;
    damaged[damaged.indexOf("PK\1\2") + 20] = '\x7f'; // a compressed size
    QByteArray body = good;
    body[body.indexOf("PK\3\4") + 30 + 8 + 1] = 'X'; // the data, against its checksum
    for (const QByteArray& bytes : {nul, damaged, body, good.chopped(10), QByteArray(), QByteArray("PK")}) {
        write(zip, bytes);
        EXPECT_EQ(run(zip, root + s("/out")), ResultCode::ArchiveError) << bytes.size();
        EXPECT_EQ(tree(root), QStringList({s("in.zip")}));
    }
    write(zip, good);
    EXPECT_EQ(run(zip, root + s("/out")), ResultCode::Ok);
}

TEST_F(Unzip, StaysInThePackageAndOffSymbolicLinks)
{
    writeZip(zip, {{"d/a", "new"}});
    const QString elsewhere = directory.filePath(s("elsewhere"));
    QDir().mkpath(elsewhere);
    QFile::link(elsewhere, root + s("/link"));
    const std::vector<std::pair<QString, QString>> refused = {{zip, elsewhere},
                                                              {zip, root + s("/../x")},
                                                              {zip, s("out")},
                                                              {zip, root + s("x")},
                                                              {zip, root + s("/link/x")},
                                                              {zip, root + s("/link")},
                                                              {zip, {}},
                                                              {root + s("/none.zip"), root + s("/out")},
                                                              {s("/etc/passwd"), root + s("/out")}};
    for (const auto& [source, destination] : refused)
        EXPECT_EQ(run(source, destination), ResultCode::BadArgument) << qPrintable(source + destination);
    // A link, or a file instead of a directory, that the merge would go through.
    QDir().mkpath(root + s("/out"));
    QFile::link(elsewhere, root + s("/out/d"));
    EXPECT_EQ(run(zip, root + s("/out")), ResultCode::StorageError);
    write(root + s("/file"), "f");
    EXPECT_EQ(run(zip, root + s("/file")), ResultCode::StorageError);
    EXPECT_EQ(tree(elsewhere), QStringList());
    EXPECT_EQ(tree(root), QStringList({s("file"), s("in.zip"), s("link"), s("out"), s("out/d")}));
}

TEST_F(Unzip, EndsWithTheService)
{
    writeZip(zip, {{"a", "1"}});
    function.cancel();
    EXPECT_EQ(run(zip, root + s("/out")), ResultCode::ArchiveError);
    EXPECT_EQ(tree(root), QStringList({s("in.zip")}));
}

} // namespace
