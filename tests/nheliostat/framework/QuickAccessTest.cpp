#include "nheliostat/framework/QuickAccessList.h"

#include "support/LogRecorder.h"
#include "support/OddFiles.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

TEST(PinCommand, NamesADocumentOrIsRefused)
{
    const struct
    {
        const char* command;
        const char* fileId; //!< null: refused
        const char* name;
    } cases[] = {
        {"pinToQuickAccess&activate&tab_menu&cloudFile&>_<&7>_<>_<R3LDtsOfZQ==", "7", "Größe"},
        {"pinToQuickAccess&activate&tab_menu&cloudFile&|&a&b||", "a&b", ""},
        {"pinToQuickAccess&activate&tab_menu&cloudFile&>_<&>_<>_<R3LDtsOfZQ==", nullptr, ""},
        {"pinToQuickAccess&activate&tab_menu&cloudFile&>_<&7>_<>_<R3LD*sOfZQ==", nullptr, ""},
        {"pinToQuickAccess&activate&tab_menu&cloudFile&>_<&7>_<", nullptr, ""},
        {"pinToQuickAccess&activate&tab_menu&cloudFile", nullptr, ""},
        {"pinToQuickAccess&activate&header&cloudFile&>_<&7>_<>_<", nullptr, ""},
        {"unpin&activate&tab_menu&cloudFile&>_<&7>_<>_<", nullptr, ""},
    };
    for (const auto& each : cases) {
        const auto entry = readPinCommand(s(each.command));
        ASSERT_EQ(entry.has_value(), each.fileId != nullptr) << each.command;
        if (entry) {
            EXPECT_EQ(entry->fileId, s(each.fileId));
            EXPECT_EQ(entry->name, s(each.name));
        }
    }
}

TEST(QuickAccess, TwoShellsKeepEachOthersDocuments)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(s("pins.json"));
    QuickAccessList one(path);
    QuickAccessList other(path);
    one.pin({s("1"), s("First"), {}});
    other.pin({s("2"), s("Second"), s("docx")});
    one.pin({s("1"), s("First, renamed"), {}});
    EXPECT_TRUE(other.unpin(s("1")));
    one.reload();
    EXPECT_EQ(one.entries(), QVector<QuickAccessEntry>({{s("2"), s("Second"), s("docx")}}));
}

TEST(QuickAccess, ReadsWhatMakesSense)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(s("pins.json"));
    const auto entriesOf = [&path](const QByteArray& text) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        return QuickAccessList(path).entries().size();
    };
    EXPECT_EQ(entriesOf(R"({"entries": [7, {"fileId": "a"}, {"fileId": ""}, {"fileId": "a", "name": "b"}]})"),
              1);
    EXPECT_EQ(entriesOf("[]"), 0);
    EXPECT_TRUE(QFile::exists(path + s(".corrupt")));
}

TEST(QuickAccess, WhatIsNoListIsSetAside)
{
    const LogRecorder log;
    for (const OddFile& odd : oddFiles) {
        const QTemporaryDir directory;
        const QString path = directory.filePath(s("pins.json"));
        ASSERT_TRUE(putOddFile(odd, path));
        ASSERT_TRUE(putOddFile(odd, path + s(".lock")));
        QuickAccessList list(path);
        EXPECT_TRUE(list.entries().isEmpty());
        const bool isBlocked = QFileInfo(path).isDir();
        list.pin({s("1"), s("First"), {}});
        EXPECT_EQ(list.entries().size(), 1);
        EXPECT_EQ(QuickAccessList(path).entries().size(), isBlocked ? 0 : 1) << odd.name;
    }
    EXPECT_FALSE(log.lines().filter(s("it is not a regular file")).isEmpty());
}

TEST(QuickAccess, HoldsAStatedNumberOfDocuments)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(s("pins.json"));
    QByteArray entries;
    for (int i = 0; i < 50000; ++i)
        entries += "{\"fileId\": \"" + QByteArray::number(i) + "\"},";
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("{\"entries\": [" + entries + "{}]}");
    file.close();
    const LogRecorder log;
    QuickAccessList list(path);
    EXPECT_EQ(list.entries().size(), 200);
    EXPECT_EQ(list.entries().last().fileId, s("199"));
    list.reload();
    list.pin({s("more"), {}, {}});
    EXPECT_EQ(list.entries().size(), 200);
    EXPECT_EQ(log.lines().filter(s("only the first 200")).size(), 1) << "said once";
    EXPECT_EQ(log.lines().filter(s("not pinned")).size(), 1);
    EXPECT_TRUE(list.unpin(s("7")));
    list.pin({s("more"), {}, {}});
    EXPECT_EQ(list.entries().last().fileId, s("more"));
}

} // namespace
