#include "proxy/NDOPConfig.h"
#include "proxy/NOfficeTypes.h"

#include <gtest/gtest.h>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

TEST(OfficeTypes, CodesOfFileTypes)
{
    const struct
    {
        const char* fileType;
        const char* code;
    } cases[] = {{"word", "w"},  {"vs", "s"},   {"dbt", "d"},  {"onlinevpp", "p"},
                 {"motl", "mo"}, {"docx", "w"}, {"XLSX", "s"}, {"pptx", "p"},
                 {"pdf", "f"},   {"zip", ""},   {"", ""},      {"db", ""}};
    for (const auto& c : cases)
        EXPECT_EQ(nofficetypes::codeOfFileType(s(c.fileType)), s(c.code)) << c.fileType;
}

TEST(OfficeTypes, NamesBelongToCodes)
{
    EXPECT_EQ(nofficetypes::packageName(s("k")), s("nsheet"));
    EXPECT_EQ(nofficetypes::pluginName(s("o")), s("quill"));
    EXPECT_EQ(nofficetypes::pluginName(s("O")), QString());
    EXPECT_TRUE(nofficetypes::isSsrSupported(s("mo")));
    EXPECT_FALSE(nofficetypes::isPreopenSupported(s("mo")));
    EXPECT_FALSE(nofficetypes::isSsrSupported(s("f")) || nofficetypes::isPreopenSupported(s("f")));
}

} // namespace
