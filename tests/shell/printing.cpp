#include "shell/cloud/PrintService.h"
#include "shell/cloud/PrintableFile.h"
#include "shell/dialogs/DialogAnswers.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QImage>
#include <QJsonObject>
#include <QPdfDocument>
#include <QTemporaryDir>
#include <QTimer>

#include <optional>

using testing::HasSubstr;

namespace {

constexpr int longestWaitMs = 60000;

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

class Printing : public testing::Test
{
protected:
    QString path(const char* name) const { return directory.filePath(s(name)); }

    void write(const char* name, const QByteArray& bytes)
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QJsonObject print(const QString& file)
    {
        std::optional<QJsonObject> told;
        QEventLoop loop;
        QTimer::singleShot(longestWaitMs, &loop, &QEventLoop::quit);
        service.print(nullptr, file, s("7"), [&](const QJsonObject& result) {
            EXPECT_FALSE(told) << "twice";
            told = result;
            loop.quit();
        });
        EXPECT_FALSE(told) << "only later";
        loop.exec();
        return told.value_or(QJsonObject());
    }

    static int pages(const QString& pdf)
    {
        QPdfDocument document;
        return document.load(pdf) == QPdfDocument::NoError ? document.pageCount() : -1;
    }

    QTemporaryDir directory;
    shell::DialogAnswers answers;
    shell::PrintService service{&answers};
};

TEST_F(Printing, BecomesAPdfFileWhereNobodySits)
{
    write("long.txt", QByteArray("line\n").repeated(500));
    write("page.html", "<h1>T</h1><img src='missing.png'><img src='/etc/hostname'>");
    ASSERT_TRUE(QImage(40, 30, QImage::Format_RGB32).save(path("picture.png")));
    const struct
    {
        const char* name;
        int fewestPages;
    } cases[] = {{"long.txt", 3}, {"page.html", 1}, {"picture.png", 1}, {"long.txt.pdf", 3}};
    for (const auto& [name, fewestPages] : cases) {
        const QJsonObject result = print(path(name));
        EXPECT_EQ(result.value(s("result")), s("ok"))
            << name << qPrintable(result.value(s("msg")).toString());
        EXPECT_EQ(result.value(s("fileId")), s("7"));
        EXPECT_EQ(result.value(s("output")).toString(), path(name) + s(".pdf"));
        EXPECT_GE(pages(path(name) + s(".pdf")), fewestPages) << name;
    }
    EXPECT_EQ(print(path("page.html")).value(s("output")), path("page.html (1).pdf"))
        << "nothing is replaced";
}

TEST_F(Printing, GoesWhereItWasTold)
{
    write("a.txt", "text");
    write("old.pdf", "old");
    ASSERT_EQ(answers.add(s("print"), path("old.pdf")), QString());
    ASSERT_EQ(answers.add(s("print"), QJsonValue()), QString());
    EXPECT_EQ(print(path("a.txt")).value(s("result")), s("ok"));
    EXPECT_EQ(pages(path("old.pdf")), 1);
    EXPECT_EQ(print(path("a.txt")).value(s("result")), s("cancelled"));
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(),
              2)
        << "nothing is left lying about";
}

TEST_F(Printing, SaysWhyItFails)
{
    write("binary.dat", QByteArray(100, '\0'));
    write("binary.txt", QByteArray(100, '\0'));
    write("broken.pdf", "%PDF-1.4 no more");
    write("broken.png", "\x89PNG\r\n\x1a\n....");

    const struct
    {
        const char* name;
        const char* message;
    } cases[] = {{"missing.txt", "does not exist"},   {"", "not a file"},
                 {"binary.dat", "cannot be printed"}, {"binary.txt", "cannot be printed"},
                 {"broken.pdf", "cannot be read"},    {"broken.png", "cannot be"}};
    for (const auto& [name, message] : cases) {
        const QJsonObject result = print(path(name));
        EXPECT_EQ(result.value(s("result")), s("failed")) << name;
        EXPECT_THAT(result.value(s("msg")).toString().toStdString(), HasSubstr(message)) << name;
        EXPECT_FALSE(QFile::exists(path(name) + s(".pdf"))) << name;
    }
    write("a.txt", "text");
    for (const char* target : {"no directory/a.pdf", "."}) {
        answers.add(s("print"), path(target));
        EXPECT_THAT(print(path("a.txt")).value(s("msg")).toString().toStdString(),
                    HasSubstr("cannot be written"));
    }
}

} // namespace
