#include "page/PreviewCommand.h"

#include "page/ClientIdentity.h"

#include <gtest/gtest.h>

#include <QSet>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

QString base64(const char* text)
{
    return QString::fromLatin1(QByteArray(text).toBase64());
}

/** The command "previewCloudDoc&<URL>&…" with that rest. */
PreviewCommand command(const char* url, const char* rest)
{
    return previewcommand::parse(QString(s("previewCloudDoc&") + base64(url) + s(rest)).split(u'&'));
}

TEST(PreviewCommandTest, findsTheFileId)
{
    constexpr auto plain = "https://docs.test/p/x";
    const struct
    {
        const char* url;
        const char* rest;
        const char* fileId;
    } cases[] = {
        {plain, "", ""},
        {plain, "&5&docx", ""}, // nobody reads the part before the suffix
        {plain, "&&docx&12", "12"},
        {plain, "&&docx&-1&7&8", "7"},
        {plain, "&&docx&-1", ""},
        {plain, "&&docx&0&00", ""},
        {plain, "&&44&55", "44"},
        {plain, "&&docx& 7&+7&7.0&0x7&99999999999999999999", ""},
        {plain, "&&docx&\u0667", ""},
        {"https://docs.test/p/71?a=1", "&&docx&-1", "71"},
        {"https://docs.test/p/71?a=/72", "&&docx", "72"},
        {"https://docs.test/p/-71", "&&docx", ""},
        {"https://docs.test/p/71/", "&&docx", ""},
        {"C:\\files\\71?x", "&&docx", "71"},
        {"/71", "&&docx", ""},
        {"71", "&&docx", ""},
    };
    for (const auto& entry : cases)
        EXPECT_EQ(command(entry.url, entry.rest).fileId, s(entry.fileId)) << entry.url << entry.rest;
}

TEST(PreviewCommandTest, decodesTheUrl)
{
    const QString plain = base64("https://docs.test/p/1?n=\xc3\xa9");
    const QString encoded = base64("https%3A%2F%2Fdocs.test%2Fp%2F2%3Fn%3D%C3%A9");
    const struct
    {
        QString parts; //!< behind "previewCloudDoc&"
        QString url;
    } cases[] = {
        {plain, s("https://docs.test/p/1?n=\xc3\xa9")},
        {plain + s("&&&&&") + encoded, s("https://docs.test/p/1?n=\xc3\xa9")},
        {plain + s("&&&&PercentEncoding&") + encoded, s("https://docs.test/p/2?n=\xc3\xa9")},
        {plain + s("&percentencoding&&&&x"), QString()},
        {plain + s("&percentencoding&&&"), s("https://docs.test/p/1?n=\xc3\xa9")},
        {plain + s("&percentencoding&&&&"), s("https://docs.test/p/1?n=\xc3\xa9")},
        {QString(), QString()},
        {s("not base64!"), QString()},
        {plain.left(plain.size() - 3) + s("*"), QString()},
        {base64("\xff\xfe"), QString()},
        {s("&&&&percentencoding&") + base64("https://docs.test/p/2%"), s("https://docs.test/p/2%")},
        {s("&&&&percentencoding&") + base64("https://docs.test/p/2%4"), s("https://docs.test/p/2%4")},
        {s("&&&&percentencoding&") + base64("https://docs.test/p/2%C3"), QString()},
    };
    for (const auto& entry : cases)
        EXPECT_EQ(previewcommand::parse(QString(s("previewCloudDoc&") + entry.parts).split(u'&')).url,
                  entry.url)
            << qPrintable(entry.parts);
}

TEST(PreviewCommandTest, readsMarkersWhereverTheyStand)
{
    const struct
    {
        const char* rest;
        bool newPage;
        bool createSubPage;
        const char* path;
    } cases[] = {
        {"", false, true, ""},
        {"&NewPage", true, true, ""},
        {"&&docx&newpages", false, true, ""},
        {"&&docx&createSubPage", false, true, ""},
        {"&&docx&createSubPage&TRUE", false, true, ""},
        {"&&docx&createSubPage&yes&newpage", true, false, ""},
        {"&&docx&createsubpage&false", false, true, ""},
        {"&&docx&filePath", false, true, ""},
        {"&&docx&filepath&/a", false, true, ""},
        {"&&docx&filePath&/a&b&createSubPage&false", false, false, "/a|b|createSubPage|false"},
    };
    for (const auto& entry : cases) {
        const PreviewCommand read = command("https://docs.test/p/1?pcEnter=a&x=1&pcEnter=b&y", entry.rest);
        EXPECT_EQ(read.newPage, entry.newPage) << entry.rest;
        EXPECT_EQ(read.createSubPage, entry.createSubPage) << entry.rest;
        EXPECT_EQ(read.pathParts.join(u'|'), s(entry.path)) << entry.rest;
        EXPECT_EQ(read.from, s("b"));
        EXPECT_TRUE(read.canBeOpened());
    }
    EXPECT_FALSE(command("file:///p/1", "").canBeOpened());
    EXPECT_FALSE(command("https://docs.test/p/", "").canBeOpened());
    EXPECT_FALSE(previewcommand::parse({s("previewCloudDoc")}).canBeOpened());
}

TEST(PreviewCommandTest, recoversAPathThatWasSplit)
{
    const auto recovered = [](const char* parts, const QSet<QString>& files) {
        return previewcommand::recoverPath(parts ? s(parts).split(u'&') : QStringList(),
                                           [&](const QString& path) { return files.contains(path); });
    };
    EXPECT_EQ(recovered("/a&b&c", {s("/a"), s("/a/b")}), s("/a"));
    EXPECT_EQ(recovered("/a&b&c", {s("/a/b"), s("/a/b/c")}), s("/a/b"));
    EXPECT_EQ(recovered("&a", {s("/a")}), s("/a"));
    EXPECT_EQ(recovered("/a&b", {s("/b")}), QString());
    EXPECT_EQ(recovered(nullptr, {QString()}), QString());
}

TEST(ClientIdentity, namesTheBrowserInUrlSafeBase64)
{
    EXPECT_EQ(clientidentity::tokenOf(s("x pc-office/1 PC-Office")),
              QByteArray("eCBwYy12bHRicm93c2VyLzEgUEMtT2ZmaWNl"));
    EXPECT_EQ(clientidentity::tokenOf(s("\xc3\xbf\xc3\xbe?>~")), QByteArray("w7_Dvj8-fg=="));
}

} // namespace
