#include "page/DocsUrl.h"

#include <gtest/gtest.h>

#include <QUrlQuery>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

docsurl::NormalizeContext context()
{
    docsurl::NormalizeContext c;
    c.officeTypeOfSuffix = [](const QString& suffix) {
        return suffix == QLatin1String("docx")   ? s("w")
               : suffix == QLatin1String("xlsx") ? s("s")
                                                 : QString();
    };
    c.recordedOfficeType = [](const QString& id) { return id == QLatin1String("42") ? s("o") : QString(); };
    c.isClientProxy = [](const QString& type) { return type == QLatin1String("s"); };
    c.makeTraceId = [] { return s("feedfacefeedfacefeedfacefeedface"); };
    return c;
}

QStringList values(const QString& url, const char* name)
{
    return QUrlQuery(QUrl(url)).allQueryItemValues(QLatin1String(name));
}

struct OfficeTypeCase
{
    const char* url;
    const char* fileNameSuffix;
    const char* suffix;
    const char* expected;
};

class OfficeTypeSource : public testing::TestWithParam<OfficeTypeCase>
{
};

TEST_P(OfficeTypeSource, FirstSourceThatKnowsWins)
{
    docsurl::NormalizeContext c = context();
    c.fileNameSuffix = s(GetParam().fileNameSuffix);
    c.suffix = s(GetParam().suffix);
    const docsurl::Normalized result = docsurl::normalize(s(GetParam().url), c);
    EXPECT_EQ(result.officeType, s(GetParam().expected));
    EXPECT_EQ(values(result.url, "openEnv"),
              result.officeType.isEmpty() ? QStringList() : QStringList(s("hybrid")));
}

INSTANTIATE_TEST_SUITE_P(
    Sources, OfficeTypeSource,
    testing::Values(OfficeTypeCase{"https://d.test/p/1?officeType=p&suffix=docx", "xlsx", "docx", "p"},
                    OfficeTypeCase{"https://d.test/p/1?suffix=docx", "xlsx", "docx", "s"},
                    OfficeTypeCase{"https://d.test/l/1?suffix=xlsx", "", "docx", "w"},
                    OfficeTypeCase{"https://d.test/p/1?suffix=docx", "", "", "w"},
                    OfficeTypeCase{"https://d.test/p/42?suffix=zip", "", "", "o"},
                    OfficeTypeCase{"https://d.test/p/42", "", "", "o"},
                    OfficeTypeCase{"https://d.test/P/42", "", "", ""},
                    OfficeTypeCase{"https://d.test/home?officeType=w", "docx", "", ""}));

TEST(DocsUrl, NormalizingTwiceKeepsOneItemOfEach)
{
    const docsurl::Normalized first =
        docsurl::normalize(s("https://d.test/p/7?suffix=docx&x=a%20b"), context());
    docsurl::NormalizeContext again = context();
    again.officeType = first.officeType;
    again.traceId = first.traceId;
    again.darkSkin = true;
    const docsurl::Normalized second = docsurl::normalize(first.url, again);
    for (const char* name : {"officeType", "openEnv", "traceId", "client_proxy", "theme"})
        EXPECT_EQ(values(second.url, name).size(), 1) << name;
    EXPECT_TRUE(second.url.contains(s("x=a%20b"))) << second.url.toStdString();
    EXPECT_EQ(values(second.url, "traceId").first(), s("feedfacefeedfacefeedfacefeedface"));
}

TEST(DocsUrl, TraceIdOfTheUrlIsTaken)
{
    const docsurl::Normalized result =
        docsurl::normalize(s("https://d.test/p/7?traceId=abc&officeType=s&client_proxy=maybe"), context());
    EXPECT_EQ(result.traceId, s("abc"));
    EXPECT_EQ(values(result.url, "client_proxy"), QStringList(s("true")));
    EXPECT_TRUE(result.clientProxy);
}

TEST(DocsUrl, InvalidUrlKeepsItsText)
{
    docsurl::NormalizeContext c = context();
    c.officeType = s("w");
    c.traceId = s("t");
    c.darkSkin = true;
    const QString invalid = s("http://:80:80/p/1");
    EXPECT_EQ(docsurl::normalize(invalid, c).url, invalid);
    EXPECT_EQ(docsurl::withQueryItem(invalid, s("sdkversion"), s("3.0.7")), invalid);
    EXPECT_EQ(docsurl::withoutLocalPackageItems(invalid), invalid);
}

TEST(DocsUrl, CommandUrls)
{
    const docsurl::CommandContext c{s("https://d.test"), s("1.2"), s("app"), s("chan"), 77};
    const QString tail = s("v=1.2&type=app&channel=chan&t=77");
    EXPECT_EQ(docsurl::commandUrl(QString(), c), s("https://d.test/?") + tail);
    EXPECT_EQ(docsurl::commandUrl(s("lock"), c), s("https://d.test/lock?") + tail);
    EXPECT_EQ(docsurl::commandUrl(s("/recent?a=b"), c), s("https://d.test/recent?a=b&") + tail);
    EXPECT_EQ(docsurl::commandUrl(s("recent?a=b"), c), docsurl::commandUrl(s("/recent?a=b"), c));
    // A command is text, not a pattern.
    EXPECT_EQ(docsurl::commandUrl(s("a%3b%1"), c), s("https://d.test/a%3b%1?") + tail);
}

TEST(DocsUrl, ReloadUrlBelongsToANewOpen)
{
    const QString url = s("https://d.test/p/1?officeType=w&startTime=1&traceId=t&from=x&feature=f&entryType=e"
                          "&interruptUseTime=2&prepareUrlTime=3&referer=r&versionMismatchAddedBy=c&keep=1");
    EXPECT_EQ(docsurl::reloadUrl(url, s("cefProcessAbort"), 99),
              s("https://d.test/p/1?officeType=w&keep=1&startTime=99&from=cefProcessAbort"));
    EXPECT_EQ(docsurl::reloadUrl(QString(), s("from"), 99), QString());
    EXPECT_EQ(docsurl::reloadUrl(s("http://:80:80/p/1"), s("from"), 99), QString());
}

TEST(DocsUrl, FileIdsAndSources)
{
    EXPECT_EQ(docsurl::fileIdOf(QUrl(s("https://d.test/p/100001?x=1"))), s("100001"));
    EXPECT_EQ(docsurl::fileIdOf(QUrl(s("https://d.test/office/100001"))), QString());
    EXPECT_EQ(docsurl::enterSourceOf(s("https://d.test/p/1?pcEnter=a&b=1&pcEnter=last&c=2")), s("last"));
    EXPECT_EQ(docsurl::enterSourceOf(s("https://d.test/p/1")), QString());
    EXPECT_EQ(docsurl::newIdentifier().size(), 32);
    EXPECT_NE(docsurl::newIdentifier(), docsurl::newIdentifier());
}

} // namespace
