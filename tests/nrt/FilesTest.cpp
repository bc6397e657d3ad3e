#include "nrt/files.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <thread>

#include "support/OddFiles.h"

namespace {

using nrt::files::Fault;

class Files : public testing::Test
{
protected:
    QString write(const char* name, const QByteArray& bytes) const
    {
        const QString path = directory.filePath(QLatin1String(name));
        EXPECT_EQ(nrt::files::replace(path, bytes), QString());
        return path;
    }
    QString fresh(const OddFile& odd) const
    {
        static int count = 0;
        const QString path = directory.filePath(QString::number(++count));
        EXPECT_TRUE(putOddFile(odd, path)) << odd.name;
        return path;
    }

    QTemporaryDir directory;
};

TEST_F(Files, AreReadUpToTheirLargestSize)
{
    const QString path = write("file", "12345");
    EXPECT_EQ(nrt::files::read(path, 5).bytes, "12345");
    EXPECT_EQ(nrt::files::read(path, 4).fault, Fault::TooLarge);
    EXPECT_EQ(nrt::files::inspect(path, 4).fault, Fault::TooLarge);
    EXPECT_TRUE(nrt::files::inspect(path, 5));
    EXPECT_TRUE(nrt::files::read(write("empty", ""), 0));
    EXPECT_EQ(nrt::files::read(directory.filePath(QStringLiteral("none")), 5).fault, Fault::Missing);
    EXPECT_EQ(nrt::files::read(path + QStringLiteral("/below"), 5).fault, Fault::Missing);
    // A file of the system, which says that it is empty.
    EXPECT_TRUE(nrt::files::read(QStringLiteral("/proc/self/status"), 1 << 20).bytes.startsWith("Name:"));
    EXPECT_EQ(nrt::files::read(QStringLiteral("/proc/self/status"), 10).fault, Fault::TooLarge);
}

TEST_F(Files, WhatIsNoFileIsNeitherWaitedForNorWrittenTo)
{
    for (const OddFile& odd : oddFiles) {
        const QString path = fresh(odd);
        const bool isHuge = QFileInfo(path).isFile() && !QFileInfo(path).isSymLink();
        const nrt::files::Reading reading = nrt::files::read(path, 1 << 20);
        EXPECT_EQ(reading.fault, isHuge ? Fault::TooLarge : Fault::NotRegular) << odd.name;
        EXPECT_FALSE(reading.reason.isEmpty());
        for (const QIODevice::OpenMode mode :
             {QIODevice::OpenMode(QIODevice::ReadOnly), QIODevice::WriteOnly | QIODevice::Append}) {
            QFile file;
            EXPECT_EQ(nrt::files::open(file, path, mode).isEmpty(), isHuge) << odd.name;
        }
        EXPECT_EQ(nrt::files::replace(path, "new").isEmpty(), isHuge) << odd.name;
        const QString aside = nrt::files::setAside(path);
        if (QFileInfo(path).isDir()) {
            EXPECT_EQ(aside, QString()) << "a folder stays";
            continue;
        }
        EXPECT_EQ(aside, path + QStringLiteral(".corrupt"));
        EXPECT_FALSE(QFileInfo(path).isSymLink() || QFile::exists(path));
        EXPECT_EQ(nrt::files::replace(path, "new"), QString()) << odd.name;
        EXPECT_EQ(nrt::files::read(path, 10).bytes, "new");
    }
}

TEST_F(Files, APipeWithAWriterIsNoFileEither)
{
    const QString path = fresh(oddFiles[0]);
    const int both = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::write(both, "{}", 2), 2);
    EXPECT_EQ(nrt::files::read(path, 10).fault, Fault::NotRegular);
    QFile file;
    EXPECT_FALSE(nrt::files::open(file, path, QIODevice::WriteOnly).isEmpty());
    ::close(both);
}

TEST_F(Files, SetAsideFindsAFreeName)
{
    const QString path = write("file", "1");
    ASSERT_TRUE(putOddFile(oddFiles[2], path + QStringLiteral(".corrupt")));
    EXPECT_EQ(nrt::files::setAside(path), path + QStringLiteral(".corrupt-2"));
    EXPECT_EQ(nrt::files::setAside(path), QString());
}

TEST_F(Files, TheDescriptorsEndWithTheProgram)
{
    QFile file;
    ASSERT_EQ(nrt::files::open(file, write("file", "1"), QIODevice::ReadWrite), QString());
    EXPECT_TRUE(::fcntl(file.handle(), F_GETFD) & FD_CLOEXEC);
}

} // namespace
