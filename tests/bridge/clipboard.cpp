#include "BridgeFixture.h"

#include "bridge/clipboard/CefClipboardEventMimeCustomBuilder.h"
#include "bridge/clipboard/CefClipboardEventMimeCustomParser.h"
#include "bridge/clipboard/CefClipboardEventMimeHtmlBuilder.h"
#include "bridge/clipboard/ClipboardContents.h"
#include "bridge/clipboard/ClipboardImages.h"
#include "bridge/clipboard/CompactJson.h"
#include "bridge/clipboard/CustomMimeFormat.h"
#include "bridge/clipboard/HtmlFormat.h"
#include "support/LogRecorder.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QJsonArray>
#include <QMimeData>
#include <QTest>
#include <QThreadPool>
#include <QUrl>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

QByteArray hex(const char* text)
{
    return QByteArray::fromHex(text);
}

QString base64(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toBase64());
}

QByteArray customOf(const QVariantMap& values)
{
    CefClipboardEventMimeCustomBuilder builder;
    for (auto value = values.begin(); value != values.end(); ++value)
        builder.insert(value.key(), value.value());
    return builder.build();
}

TEST(CustomMime, HasTheListedBytes)
{
    const QByteArray oneLetterEach = hex("14000000 01000000 01000000 61000000 01000000 62000000");
    const struct
    {
        QVariantMap values;
        QByteArray bytes;
    } cases[] = {
        {{{s("a"), s("b")}}, oneLetterEach},
        {{{s(" a\t"), s("\n b ")}}, oneLetterEach},
        {{{s("a"), s("b")}, {s("c"), s("  ")}, {s(" "), s("d")}, {s("e"), QVariantList{1}}}, oneLetterEach},
        {{}, hex("04000000 00000000")},
        {{{s("k"), QVariantMap{{s("n"), 1}}}}, // {"n":1}
         hex("20000000 01000000 01000000 6b000000 07000000 7b0022006e0022003a0031007d000000")},
        {{{s("\U0001F373"), 7}}, hex("14000000 01000000 02000000 3cd873df 01000000 37000000")},
    };
    for (const auto& each : cases)
        EXPECT_EQ(customOf(each.values).toHex(' '), each.bytes.toHex(' '));
}

TEST(CustomMime, MapsAreWrittenAsQtWritesThem)
{
    const QString manyPieces = QString(4095, u'x') + s("\U0001F373\t") + QString(5000, u'"');
    const QVariantMap map{{s("\"\\\n\x01/ü"), QVariantMap()},
                          {s("list"), QVariantList{1.5, true, QVariant(), QVariant(QVariantList{s("x")})}},
                          {s("lone"), QString(QChar(0xd83c))},
                          {s("pair at a seam"), manyPieces}};
    EXPECT_EQ(compactJson(map).toUtf8(),
              QJsonDocument(QJsonObject::fromVariantMap(map)).toJson(QJsonDocument::Compact));
}

TEST(CustomMime, ReadsWhatItWroteAndNothingThatEndsEarly)
{
    const QVariantMap values{
        {s("text/zqdoc"), s("odd")}, {s("t"), s("even")}, {s("é"), QString(40000, u'x')}};
    const QByteArray whole = customOf(values);
    const auto read = CefClipboardEventMimeCustomParser(whole).parse();
    EXPECT_TRUE(read.second);
    EXPECT_EQ(read.first, values);

    const QByteArray small = customOf({{s("a"), s("b")}, {s("cd"), s("efg")}});
    for (int size = 0; size < small.size(); ++size) {
        const bool onlyPaddingIsMissing = size >= small.size() - 2;
        const auto cut = CefClipboardEventMimeCustomParser(small.left(size)).parse();
        EXPECT_EQ(cut.second, onlyPaddingIsMissing) << size;
        EXPECT_EQ(cut.first.isEmpty(), !onlyPaddingIsMissing) << size;
    }
    for (const char* lying :
         {"00000000 ffffffff 01000000 61000000 01000000 62000000", // four billion pairs
          "00000000 01000000 ffffffff 61000000 01000000 62000000", // longer than 32 bits say
          "00000000 01000000 01000080 61000000 01000000 62000000", // one, once doubled
          "00000000 01000000 01000000 61000000 02000000 6200"})
        EXPECT_FALSE(CefClipboardEventMimeCustomParser(hex(lying)).parse().second) << lying;
}

TEST(CustomMime, RunningOutOfMemoryIsLoggedAndLeavesTheOtherFormats)
{
    const LogRecorder log;
    const QString shared(64 << 20, u'x'); // sixteen of these are more than a byte array holds
    QVariantMap arguments{{s("text/plain"), s("kept")}};
    for (int i = 0; i < 16; ++i)
        arguments.insert(s("text/zqdoc%1").arg(i), shared);
    const auto content = clipboardcontents::fromArguments(arguments).content;
    EXPECT_EQ(content->formats(), QStringList{s("text/plain")});
    EXPECT_EQ(log.lines(), QStringList{s("error [CefClipboardEventMimeCustomBuilder] "
                                         "getMimeByteArray throw bad_alloc")});
}

TEST(HtmlFormat, BuildsTheDocumentBehindItsOffsets)
{
    const CefClipboardEventMimeHtmlBuilder builder;
    EXPECT_EQ(builder.build({}),
              QByteArray("Version:0.9\r\nStartHTML:0000000105\r\nEndHTML:0000000177\r\n"
                         "StartFragment:0000000141\r\nEndFragment:0000000141\r\n"
                         "<html>\r\n<body>\r\n<!--StartFragment--><!--EndFragment-->\r\n</body>\r\n</html>"));
    const QByteArray fragment = "<b>K\xc3\xbc"
                                "che EndHTML:9</b>";
    const QByteArray bytes = builder.build(fragment);
    EXPECT_EQ(bytes.mid(141, fragment.size()), fragment);
    EXPECT_EQ(htmlformat::document(bytes), bytes.mid(105));
}

TEST(HtmlFormat, OffsetsThatLieGiveNoDocument)
{
    for (const char* lying :
         {"", "Version:0.9", "Version:0.9\r\nStartHTML:\r\nEndHTML:30\r\n<html></html>",
          "Version:0.9\r\nStartHTML:20\r\nEndHTML:4294967300\r\n<html></html>",
          "Version:0.9\r\nStartHTML:40\r\nEndHTML:20\r\n<html></html>",
          "Version:0.9\r\nStartHTML:-1\r\nEndHTML:20\r\n<html></html>", "<html>StartHTML:1 EndHTML:2</html>"})
        EXPECT_EQ(htmlformat::document(lying), std::nullopt) << lying;
}

TEST(HtmlFormat, OfficeDocumentsAreCutOut)
{
    const QByteArray office = "<html xmlns:o=\"urn:schemas-microsoft-com:office:office\" x>y</html>";
    const struct
    {
        QByteArray bytes;
        QByteArray cut;
    } cases[] = {
        {"Version:1.0\r\n" + office + "</html>tail", office},
        {office + "tail", office + "tail"},
        {"x" + office.chopped(1), "x" + office.chopped(1)},
        {"</html>x" + office, office},
        {{}, {}},
    };
    for (const auto& each : cases)
        EXPECT_EQ(htmlformat::cutOfficeDocument(each.bytes), each.cut);
    for (int size = 500; size < 1100; ++size) {
        const QByteArray padded = office.chopped(7) + QByteArray(size, 't') + "</htm></html>";
        EXPECT_EQ(htmlformat::cutOfficeDocument("x" + padded + "</html>"), padded) << size;
    }
}

TEST(ClipboardArguments, BecomeMimeData)
{
    QByteArray png;
    QBuffer buffer(&png);
    QImage(2, 3, QImage::Format_RGB32).save(&buffer, "PNG");
    const auto [content, pictures] = clipboardcontents::fromArguments(
        {{s("Text/Uri-List"), QStringList{s("https://d.test/a b"), s("file:///tmp/ä")}},
         {s("x/ZQDOC"), QVariantMap{{s("n"), 1}}},
         {s("text/html"), s("<b>ü</b>")},
         {s("image/base64"), base64(png)},
         {s("Text/Plain"), s("ü")},
         {s("text/number"), 12},
         {s("text/list"), QVariantList{1}}});
    EXPECT_EQ(content->urls(), (QList<QUrl>{QUrl(s("https://d.test/a b")), QUrl(s("file:///tmp/ä"))}));
    EXPECT_EQ(content->data(s(custommime::formatName)),
              custommime::build({{s("x/zqdoc"), QVariantMap{{s("n"), 1}}}}));
    EXPECT_EQ(content->data(s("text/html")), htmlformat::build("<b>\xc3\xbc</b>"));
    EXPECT_EQ(clipboardimages::lastOf(pictures).size(), QSize(2, 3));
    EXPECT_EQ(content->data(s("text/plain")), "\xc3\xbc");
    EXPECT_EQ(content->data(s("text/number")), "12");
    EXPECT_EQ(content->data(s("text/list")), "");
    for (const QVariant& broken : {QVariant(s("####")), QVariant(s("R0lGODdhAQ==")), QVariant(QVariantMap())})
        EXPECT_TRUE(
            clipboardimages::lastOf(clipboardcontents::fromArguments({{s("image/base64"), broken}}).pictures)
                .isNull());
}

/** A PNG of one colour, which takes few bytes whatever its size. */
QByteArray plainPng(const QSize& size)
{
    QByteArray png;
    QBuffer buffer(&png);
    QImage image(size, QImage::Format_Mono);
    image.fill(1);
    image.save(&buffer, "PNG");
    return png;
}

TEST(ClipboardImages, ThoseOfTooManyPointsAreNotDecoded)
{
    const LogRecorder log;
    const QByteArray large = plainPng({4097, 4096});
    const QByteArray small = plainPng({16, 16});
    EXPECT_EQ(clipboardimages::lastOf({small, large}).size(), QSize(16, 16));
    EXPECT_EQ(clipboardimages::lastOf({large, small, "no picture"}).size(), QSize(16, 16));
    EXPECT_EQ(log.lines().filter(s("a picture of 16781312 points is left out")).size(), 1);
    EXPECT_FALSE(clipboardimages::toPng({{}, large}).isEmpty()) << "read, but not placed";
    EXPECT_TRUE(clipboardimages::toPng({{}, plainPng({8193, 8192})}).isEmpty());
    EXPECT_TRUE(clipboardimages::toPng({QImage(8193, 8192, QImage::Format_Mono), {}}).isEmpty());
    EXPECT_TRUE(clipboardimages::areSmall({small}));
    EXPECT_FALSE(clipboardimages::areSmall({small, large}));
}

class ClipboardMethods : public BridgeFixture
{
protected:
    void SetUp() override
    {
        BridgeFixture::SetUp();
        start();
    }

    QJsonObject called(const char* name, const QJsonObject& arguments = {})
    {
        return call(name, QJsonDocument(arguments).toJson(QJsonDocument::Compact));
    }

    QJsonObject resultOf(QMimeData* content)
    {
        QGuiApplication::clipboard()->setMimeData(content);
        return called("getClipboardData").value(s("result")).toObject();
    }
};

TEST_F(ClipboardMethods, AnswerWhatWasSet)
{
    const QJsonObject arguments{{s("text/html"), s("<b>ü</b>")},
                                {s("text/zqdoc"), s("Ärger")},
                                {s("text/plain"), s("plain")},
                                {s("text/uri-list"), QJsonArray{s("https://d.test/ä")}}};
    EXPECT_EQ(called("setClipboardData", arguments), (QJsonObject{{s("callstatus"), s("ok")}}));
    // Other programs get HTML without the header of the format.
    EXPECT_TRUE(QGuiApplication::clipboard()->mimeData()->html().startsWith(s("<meta ")));
    EXPECT_EQ(called("getClipboardData").value(s("result")).toObject(),
              (QJsonObject{{s("text/html"), base64(htmlformat::build("<b>\xc3\xbc</b>"))},
                           {s("text/zqdoc"), base64("\xc3\x84rger")},
                           {s("text/plain"), base64("plain")},
                           {s("text/uri-list"), QJsonArray{base64("https://d.test/\xc3\xa4")}}}));
}

TEST_F(ClipboardMethods, AnswerWhatOtherProgramsPlace)
{
    EXPECT_EQ(resultOf(new QMimeData), QJsonObject());
    const struct
    {
        const char* format;
        QByteArray bytes;
        QJsonObject result;
    } cases[] = {
        {"text/html", "<i>x</i>", {{s("text/html"), base64("<i>x</i>")}}},
        {"text/html", hex("fffe 3c00 fc00"), {{s("text/html"), base64("<\xc3\xbc")}}},
        {"text/html", hex("feff 003c 00fc"), {{s("text/html"), base64("<\xc3\xbc")}}},
        {"text/html", {}, {}},
        {"Image/BMP", "BM", {{s("Image/BMP"), base64("BM")}}},
        {"chromium/x-web-custom-data",
         custommime::build({{s("Text/WebTextId"), 5}, {s("other"), s("x")}}),
         {{s("text/webtextid"), base64("5")}}},
        {custommime::formatName, custommime::build({{s("a/zqdoc"), s("b")}}).chopped(4), {}},
        {"application/x-other", "x", {}},
    };
    for (const auto& each : cases) {
        auto* const content = new QMimeData;
        content->setData(s(each.format), each.bytes);
        EXPECT_EQ(resultOf(content), each.result) << each.format << each.bytes.toHex().toStdString();
    }
    auto* const picture = new QMimeData;
    picture->setImageData(QImage(2, 3, QImage::Format_RGB32));
    const QByteArray png =
        QByteArray::fromBase64(resultOf(picture).value(s("image/png")).toString().toLatin1());
    EXPECT_EQ(QImage::fromData(png, "PNG").size(), QSize(2, 3));
}

TEST_F(ClipboardMethods, LargePicturesAreMadeElsewhereAndLaterCallsFollow)
{
    const auto ask = [this](const char* name, const QJsonObject& arguments) {
        bridge->fromJSAsynCall(QString::fromUtf8(
            QJsonDocument(QJsonObject{{s("id"), s(name)}, {s("name"), s(name)}, {s("args"), arguments}})
                .toJson(QJsonDocument::Compact)));
    };
    const auto& resolved = container->transport.resolved;
    QGuiApplication::clipboard()->setText(s("earlier"));
    ask("setClipboardData",
        {{s("image/base64"), base64(plainPng({1000, 1000}))}, {s("text/plain"), s("set")}});
    ask("readClipboard", {});
    ask("getClipboardData", {});
    ask("writeClipboard", {{s("data"), QJsonObject{{s("type"), s("text")}, {s("content"), s("written")}}}});
    EXPECT_TRUE(resolved.empty());
    EXPECT_EQ(QGuiApplication::clipboard()->text(), s("earlier"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return resolved.size() == 4; }, 30000));
    EXPECT_EQ(resolved[0].json, R"({"callstatus":"ok"})");
    EXPECT_EQ(json(resolved[1].json).value(s("content")), s("set"));
    const QJsonObject got = json(resolved[2].json).value(s("result")).toObject();
    EXPECT_EQ(got.value(s("text/plain")), base64("set"));
    EXPECT_EQ(
        QImage::fromData(QByteArray::fromBase64(got.value(s("image/png")).toString().toLatin1())).size(),
        QSize(1000, 1000));
    EXPECT_EQ(resolved[3].callId, s("writeClipboard"));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), s("written"));

    // A page that goes takes its calls along.
    ask("setClipboardData", {{s("image/base64"), base64(plainPng({1000, 1000}))}});
    ask("writeClipboard", {{s("data"), QJsonObject{{s("type"), s("text")}, {s("content"), s("late")}}}});
    delete bridge;
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), s("written"));
}

TEST_F(ClipboardMethods, MoveTextAndCloudFiles)
{
    const QJsonObject file{{s("url"), s("u")}, {s("fileids"), s("1,2")}};
    const struct
    {
        QJsonValue data;
        QJsonObject read;
    } cases[] = {
        {QJsonObject{{s("type"), s("text")}, {s("content"), s("ä")}},
         {{s("type"), s("text")}, {s("content"), s("ä")}}},
        {QJsonObject{{s("type"), s("other")}, {s("content"), s("b")}},
         {{s("type"), s("text")}, {s("content"), s("ä")}}},
        {s("no map"), {{s("type"), s("text")}, {s("content"), s("ä")}}},
        {QJsonObject{{s("type"), s("cloudFile")},
                     {s("content"), s(R"({ "url": "u", "fileids": "1,2", "x": 1 })")}},
         {{s("type"), s("cloudFile")}, {s("content"), file}}},
        {QJsonObject{{s("type"), s("cloudFile")}, {s("content"), s("[]")}}, {{s("type"), s("cloudFile")}}},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(called("writeClipboard", {{s("data"), each.data}}), (QJsonObject{{s("result"), s("ok")}}));
        EXPECT_EQ(called("readClipboard"), each.read);
    }
    QGuiApplication::clipboard()->clear();
    EXPECT_EQ(called("readClipboard"), (QJsonObject{{s("type"), s("binary")}}));
}

} // namespace
