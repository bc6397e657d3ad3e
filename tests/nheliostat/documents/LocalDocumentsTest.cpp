#include "FakeDownloads.h"
#include "nheliostat/documents/DocumentExport.h"
#include "nheliostat/documents/DocumentKind.h"
#include "nheliostat/documents/LocalDocumentFetch.h"
#include "support/HttpStub.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <sys/stat.h>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

TEST(DocumentKinds, AreSeenFromNameAndContent)
{
    const QTemporaryDir directory;
    const QByteArray cutInACharacter = QByteArray(64 * 1024 - 1, 'a') + "\xc3\xa4";
    const struct
    {
        const char* name;
        QByteArray bytes;
        DocumentKind kind;
    } files[] = {{"a.txt", "plain", DocumentKind::Text},
                 {"empty", "", DocumentKind::Text},
                 {"cut.md", cutInACharacter, DocumentKind::Text},
                 {"utf16.txt",
                  QByteArray("\xff\xfe"
                             "a\0b\0",
                             6),
                  DocumentKind::Text},
                 {"page.HTML", "<p>Hi", DocumentKind::RichText},
                 {"binary.html", QByteArray("\0\1\2", 3), DocumentKind::Other},
                 {"latin.txt", "caf\xe9 !", DocumentKind::Other},
                 {"broken.png", "\x89PNG\r\n\x1a\n\xff", DocumentKind::Other}};
    for (const auto& file : files) {
        const QString path = directory.filePath(s(file.name));
        write(path, file.bytes);
        EXPECT_EQ(documentKindOf(path), file.kind) << file.name;
    }
    ASSERT_TRUE(QImage(3, 2, QImage::Format_RGB32).save(directory.filePath(s("p.png"))));
    EXPECT_EQ(documentKindOf(directory.filePath(s("p.png"))), DocumentKind::Image);
    EXPECT_EQ(documentKindOf(directory.path()), DocumentKind::Missing);
    EXPECT_EQ(documentKindOf(directory.filePath(s("none"))), DocumentKind::Missing);
    ASSERT_EQ(mkfifo(QFile::encodeName(directory.filePath(s("pipe.txt"))).constData(), 0600), 0);
    EXPECT_EQ(documentKindOf(directory.filePath(s("pipe.txt"))), DocumentKind::Missing);
}

class Fetch : public testing::Test
{
protected:
    /** "path", or "failed: why". */
    QString outcome(const LocalDocumentSource& source, const LocalDocumentRequest& request)
    {
        LocalDocumentFetch fetch(source, request, directory.path());
        QSignalSpy fetched(&fetch, &LocalDocumentFetch::fetched);
        QSignalSpy failed(&fetch, &LocalDocumentFetch::failed);
        fetch.start();
        EXPECT_EQ(fetched.count() + failed.count(), 0);
        EXPECT_TRUE(waitUntil([&] { return fetched.count() + failed.count() > 0; }));
        QCoreApplication::processEvents();
        EXPECT_EQ(fetched.count() + failed.count(), 1);
        return fetched.isEmpty() ? s("failed: ") + failed.value(0).value(0).toString()
                                 : fetched.first().first().toString();
    }

    QTemporaryDir directory;
    HttpStub server;
    FakeDownloads service;
};

TEST_F(Fetch, ADocumentComesAsItsExport)
{
    service.user.cookies = s("k=v");
    server.answer("/office-config/7?",
                  {200, R"({"file_info":{"name":"../a/Plan.docx"},"ssr":{"html":"<p>Grün</p>"}})", {}});
    const QString path = outcome({&service, server.origin()}, {s("7"), {}, {}, false});
    EXPECT_EQ(path, directory.filePath(s("Plan.docx.html")));
    EXPECT_THAT(readTextStart(path, 1000).text.toStdString(), testing::HasSubstr("<p>Grün</p>"));
    EXPECT_EQ(server.last("/office-config/7?").headers.value("cookie"), "k=v");
    EXPECT_TRUE(service.asked.isEmpty());
}

TEST_F(Fetch, OtherFilesAreDownloadedByTheService)
{
    const QString path = directory.filePath(s("x.txt"));
    write(path, "x");
    const QString task =
        s(R"(%1|{"tasks":[{"taskId":"t1","state":"%2","percent":40,"path":"%3","msg":"%4"}]})");
    const struct
    {
        const char* name;
        QStringList reports;
        QString outcome;
    } runs[] = {
        {"goes well, after the service was away",
         {task.arg(s("downloading"), s("running"), {}, {}), task.arg(s("finished"), s("finished"), path, {})},
         path},
        {"fails", {task.arg(s("finished"), s("failed"), {}, s("no room"))}, s("no room")},
        {"finished without a file", {task.arg(s("finished"), s("finished"), path + u'x', {})}, s("gone")},
        {"unknown to the service", {s("notask|{}")}, s("failed: ")},
        {"garbage", {s("?")}, s("failed: ")},
    };
    for (const auto& run : runs) {
        service.reports = run.reports;
        service.asked.clear();
        EXPECT_THAT(outcome({&service, server.origin()}, {s("8"), {}, {}, false}).toStdString(),
                    testing::HasSubstr(run.outcome.toStdString()))
            << run.name;
        EXPECT_EQ(service.asked.mid(0, 2), QStringList({s("8"), s("getBatchDownloadCloudFilesState:t1")}));
        EXPECT_EQ(service.directory, directory.path());
    }
}

TEST_F(Fetch, EndsWhenNobodyBringsTheFile)
{
    const LocalDocumentRequest request{s("8"), {}, {}, false};
    service.accepts = false;
    EXPECT_THAT(outcome({&service, {}}, request).toStdString(), testing::HasSubstr("did not take"));
    EXPECT_THAT(outcome({nullptr, {}}, request).toStdString(), testing::HasSubstr("no cloud service"));
    server.answer("/office-config/8", {500, "", {}});
    EXPECT_THAT(outcome({&service, server.origin()}, request).toStdString(),
                testing::HasSubstr("documents service"));
    server.answer("/office-config/8", {200, "{}", {}});
    EXPECT_THAT(outcome({&service, server.origin()}, request).toStdString(),
                testing::HasSubstr("no content"));
}

} // namespace
