#include "zeolite/logging/LogWriter.h"

#include <gmock/gmock.h>

#include <thread>

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "support/OddFiles.h"

namespace {

QStringList linesOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

TEST(LogWriter, FormatsOneLinePerWrite)
{
    const QDateTime time(QDate(2024, 5, 6), QTime(7, 8, 9, 10), Qt::UTC);
    EXPECT_EQ(
        formatLogLine({LogLevel::Warning, QStringLiteral("skyleaf"), QStringLiteral("a\nb--X::y")}, time),
        QByteArray("2024-05-06T07:08:09.010Z warning [skyleaf] a\\nb--X::y\n"));
}

TEST(LogWriter, KeepsOneOrderAcrossThreadsAndSinks)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("logs/shell.log"));
    LogWriter log;
    log.setFile(path);
    QStringList first;
    QStringList second;
    log.addSink([&first](LogLevel, const QString&, const QString& text) { first.append(text); });
    const int removed =
        log.addSink([&second](LogLevel, const QString&, const QString& text) { second.append(text); });

    const auto writeLines = [&log](const QString& who) {
        for (int i = 0; i < 200; ++i)
            log.write(LogLevel::Info, who, who + QString::number(i));
    };
    std::thread a(writeLines, QStringLiteral("a"));
    std::thread b(writeLines, QStringLiteral("b"));
    a.join();
    b.join();
    log.removeSink(removed);
    log.write(LogLevel::Error, QStringLiteral("a"), QStringLiteral("last"));

    ASSERT_EQ(first.size(), 401);
    EXPECT_EQ(second, first.mid(0, 400));
    QStringList inFile;
    for (const QString& line : linesOf(path))
        inFile.append(line.section(QLatin1String("] "), 1));
    EXPECT_EQ(inFile, first);
    for (const QString& who : {QStringLiteral("a"), QStringLiteral("b")}) {
        const QStringList own = first.filter(QRegularExpression(QStringLiteral("^%1\\d").arg(who)));
        ASSERT_EQ(own.size(), 200);
        for (int i = 0; i < 200; ++i)
            ASSERT_EQ(own.at(i), who + QString::number(i));
    }
}

TEST(LogWriter, LinesOfASinkFollowTheLineThatItIsGiven)
{
    LogWriter log;
    QStringList seen;
    log.addSink([&log](LogLevel, const QString&, const QString& text) {
        if (text == QLatin1String("outer"))
            log.write(LogLevel::Info, {}, QStringLiteral("inner"));
    });
    log.addSink([&seen](LogLevel, const QString&, const QString& text) { seen.append(text); });
    log.write(LogLevel::Info, {}, QStringLiteral("outer"));
    EXPECT_EQ(seen, QStringList({QStringLiteral("outer"), QStringLiteral("inner")}));
}

TEST(LogWriter, WritesToFilesOnly)
{
    for (const OddFile& odd : oddFiles) {
        const QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("shell.log"));
        ASSERT_TRUE(putOddFile(odd, path)) << odd.name;
        LogWriter log;
        int lines = 0;
        log.addSink([&lines](LogLevel, const QString&, const QString&) { ++lines; });
        log.setFile(path);
        testing::internal::CaptureStderr();
        for (int i = 0; i < 3; ++i)
            log.write(LogLevel::Info, QStringLiteral("a"), QStringLiteral("b"));
        const std::string complaints = testing::internal::GetCapturedStderr();
        EXPECT_EQ(lines, 3);
        const bool isFile =
            !QFileInfo(path).isSymLink() && QFileInfo(path).isFile(); // begun anew, being full
        EXPECT_EQ(isFile ? linesOf(path).size() : 3, 3) << odd.name;
        EXPECT_EQ(QString::fromStdString(complaints).count(QStringLiteral("it is not a regular file")),
                  isFile ? 0 : 1)
            << complaints;
    }
}

TEST(LogWriter, RotatesAtTheLimitAndKeepsOneOlderFile)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("shell.log"));
    LogWriter log;
    log.setFile(path, 200);
    for (int i = 0; i < 20; ++i)
        log.write(LogLevel::Info, QStringLiteral("t"), QStringLiteral("line %1").arg(i));

    const QStringList lines = linesOf(path + QStringLiteral(".1")) + linesOf(path);
    ASSERT_FALSE(lines.isEmpty());
    for (int i = 0; i < lines.size(); ++i)
        EXPECT_TRUE(lines.at(i).endsWith(QStringLiteral("line %1").arg(20 - lines.size() + i)));
    EXPECT_LE(QFile(path).size(), 200);
    EXPECT_LE(QFile(path + QStringLiteral(".1")).size(), 200);
    EXPECT_GT(QFile(path + QStringLiteral(".1")).size(), 0);
}

} // namespace
