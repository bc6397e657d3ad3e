#include "page/OpenFilesParams.h"

#include <gtest/gtest.h>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

QString base64(const char* text)
{
    return QString::fromLatin1(QByteArray(text).toBase64());
}

TEST(OpenFilesParams, FindsTheUrlArgument)
{
    EXPECT_EQ(findUrlArgument({s("/x"), s("a=1&&URL=https://d.test/p/1&fileid=1&&url=no")}),
              s("https://d.test/p/1&fileid=1"));
    EXPECT_EQ(findUrlArgument({s("https://d.test")}), QString());
}

TEST(OpenFilesParams, ReadsEveryParameter)
{
    const OpenFilesParams p = parseOpenFilesParams(
        s("https://d.test/p/"
          "9?pcEnter=list&SUFFIX=docx&fileid=12&newpage=1&filename=a\nb.docx&version=3&version=4"
          "&downprohibited=1&toolbar=0&cmd=first&cmd=second&suffix=ignored"));
    EXPECT_EQ(p.suffix, s("docx"));
    EXPECT_EQ(p.fileId, s("12"));
    EXPECT_TRUE(p.newPage);
    EXPECT_EQ(p.fileName, s("a&b.docx"));
    EXPECT_TRUE(p.downloadProhibited);
    EXPECT_FALSE(p.showToolBar);
    EXPECT_EQ(p.from, s("list"));
    EXPECT_EQ(p.url, s("https://d.test/p/9?pcEnter=list&cmd=first?version=4"));
}

TEST(OpenFilesParams, CaseOfPrefixes)
{
    const OpenFilesParams p =
        parseOpenFilesParams(s("https://d.test/x&DownProhibited=1&ToolBar=1&FILEID=-1"));
    EXPECT_FALSE(p.downloadProhibited);
    EXPECT_TRUE(p.showToolBar);
    EXPECT_EQ(p.fileId, s("-1"));
}

TEST(OpenFilesParams, Base64UrlMustExtendTheGivenOne)
{
    const QString given = s("https://d.test/p/9");
    EXPECT_EQ(parseOpenFilesParams(given + s("&base64url=") + base64("HTTPS://d.test/p/9?a=1&b=2")).url,
              s("HTTPS://d.test/p/9?a=1&b=2"));
    EXPECT_EQ(
        parseOpenFilesParams(given + s("&base64url=") + base64("https://evil.test/") + s("&version=2")).url,
        QString());
    EXPECT_EQ(parseOpenFilesParams(given + s("&base64filename=") + base64("ä.docx")).fileName, s("ä.docx"));
}

struct SegmentCase
{
    const char* text;
    const char* id;
};

class LastSegment : public testing::TestWithParam<SegmentCase>
{
};

TEST_P(LastSegment, IsAnIdOnlyWhenPositive)
{
    EXPECT_EQ(positiveLastSegment(s(GetParam().text)), s(GetParam().id));
}

INSTANTIATE_TEST_SUITE_P(Texts, LastSegment,
                         testing::Values(SegmentCase{"https://d.test/p/17", "17"},
                                         SegmentCase{"https://d.test/p/-17", ""},
                                         SegmentCase{"C:\\x\\17", "17"}, SegmentCase{"/17", ""},
                                         SegmentCase{"17", ""}, SegmentCase{"", ""},
                                         SegmentCase{"https://d.test/p/0", ""},
                                         SegmentCase{"https://d.test/p/17?x=1", ""}));

TEST(OpenFilesParams, EntryMarkers)
{
    const QString url = s("$entry(quill)$/p/1");
    const EntryMarker marker = findEntryMarker(url);
    EXPECT_EQ(marker.position, 0);
    EXPECT_EQ(marker.key, s("quill"));
    EXPECT_EQ(QString(url).replace(marker.position, marker.length, s("X")), s("X/p/1"));
    for (const char* none : {"https://d.test", "$entry$", "$entryquill$", "$entry(quill)", "$entry($"})
        EXPECT_LT(findEntryMarker(s(none)).position, 0) << none;
}

} // namespace
