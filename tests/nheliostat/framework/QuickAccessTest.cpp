#include "nheliostat/framework/QuickAccessList.h"

#include "support/LogRecorder.h"

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

} // namespace
