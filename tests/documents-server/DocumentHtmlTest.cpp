#include "service/DocumentHtml.h"

#include <gmock/gmock.h>

#include <QJsonDocument>

namespace documents {
namespace {

std::string html(const QByteArray& content)
{
    return contentToHtml(QJsonDocument::fromJson(content).object()).toStdString();
}

/** The HTML of a text document that holds just this node. */
std::string htmlOfNode(const QByteArray& node)
{
    return html(R"({"type":"doc","content":[)" + node + "]}");
}

std::string htmlOfLink(const QByteArray& address)
{
    return htmlOfNode(R"({"type":"text","text":"t","marks":[{"type":"link","attrs":{"href":")" + address +
                      R"("}}]})");
}

TEST(DocumentHtml, showsTextWithItsStructure)
{
    EXPECT_EQ(
        htmlOfNode(R"({"type":"heading","attrs":{"level":2},"content":[{"type":"text","text":"A & <b>"}]})"),
        "<h2>A &amp; &lt;b&gt;</h2>");
    EXPECT_EQ(htmlOfNode(R"({"type":"heading","attrs":{"level":99}})"), "<h6></h6>");
    const QByteArray words =
        R"({"type":"text","text":"x","marks":[{"type":"em"},{"type":"strong"}]},{"type":"hard_break"})";
    EXPECT_EQ(htmlOfNode(R"({"type":"bullet_list","content":[{"type":"list_item","content":[)"
                         R"({"type":"paragraph","content":[)" +
                         words + "]}]}]}"),
              "<ul><li><p><strong><em>x</em></strong><br></p></li></ul>");
    EXPECT_EQ(htmlOfNode(R"({"type":"unheard_of","content":[{"type":"text","text":"kept"}]},7)"), "kept");
}

TEST(DocumentHtml, keepsOnlyAddressesThatCannotRunScript)
{
    EXPECT_EQ(htmlOfLink(R"(https://a.test/?q=\"&x)"), "<a href=\"https://a.test/?q=&quot;&amp;x\">t</a>");
    for (const char* address : {"JavaScript:alert(1)", " javascript:alert(1)", "data:text/html,x", ""})
        EXPECT_EQ(htmlOfLink(address), "t") << address;
    EXPECT_EQ(htmlOfNode(R"({"type":"image","attrs":{"src":"data:text/html,x","alt":"<"}})"), "&lt;");
    EXPECT_EQ(htmlOfNode(R"({"type":"image","attrs":{"src":"/a.png","alt":"\""}})"),
              "<img src=\"/a.png\" alt=\"&quot;\">");
}

TEST(DocumentHtml, showsTables)
{
    EXPECT_EQ(html(R"({"sheets":[{"name":"N<","columns":[{"title":"T"}],"rows":[["<i>"],[3]]}]})"),
              "<h2>N&lt;</h2><table><thead><tr><th>T</th></tr></thead>"
              "<tbody><tr><td>&lt;i&gt;</td></tr><tr><td>3</td></tr></tbody></table>");
    EXPECT_EQ(html(R"({"sheets":"no"})"), "");
}

} // namespace
} // namespace documents
