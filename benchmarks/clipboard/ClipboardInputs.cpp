#include "ClipboardInputs.h"

#include "bridge/clipboard/CustomMimeFormat.h"
#include "bridge/clipboard/HtmlFormat.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTextCodec>

#include <memory>

namespace {

constexpr int pairUnits = 50;
const QString ownType = QStringLiteral("text/zqdoc");

/** The result counts as used. */
template <typename T>
void keep(const T& result)
{
    asm volatile("" : : "r,m"(result) : "memory");
}

QString textOf(int bytes)
{
    const QString line = QStringLiteral("The quick brown fox, grün und 文档, jumps over the lazy dog. ");
    return line.repeated(bytes / 2 / line.size() + 1).left(bytes / 2 - 1) + QLatin1Char('.');
}

QByteArray encoded(const QString& text)
{
    const std::unique_ptr<QTextEncoder> encoder(
        QTextCodec::codecForName("UTF-16")->makeEncoder(QTextCodec::IgnoreHeader));
    return encoder->fromUnicode(text);
}

/** Many small texts of that many bytes in all. */
QVariantMap smallTexts(int bytes)
{
    QVariantMap values;
    for (int i = 0; i < std::max(1, bytes / 2 / pairUnits); ++i)
        values.insert(QStringLiteral("%1").arg(i, 10, 10, QLatin1Char('0')),
                      QString(pairUnits, QLatin1Char('x')));
    return values;
}

void addCustomCases(std::vector<ClipboardCase>& cases, int size)
{
    const QString text = textOf(size);
    const QVariantMap values{{ownType, text}};
    cases.push_back({"custom format, build, one text", text.size() * 2,
                     [values] { keep(custommime::build(values).constData()); },
                     [text] { keep(encoded(text).constData()); }});

    const QByteArray bytes = custommime::build(values);
    const QByteArray units = encoded(text);
    cases.push_back(
        {"custom format, parse, one text", bytes.size(), [bytes] { keep(custommime::parse(bytes)->size()); },
         [units] {
             keep(QString(reinterpret_cast<const QChar*>(units.constData()), units.size() / 2).constData());
         }});

    const QVariantMap map{{QStringLiteral("text"), text}};
    cases.push_back({"custom format, build, one map", text.size() * 2,
                     [value = QVariantMap{{ownType, map}}] { keep(custommime::build(value).constData()); },
                     [map] {
                         const QByteArray json =
                             QJsonDocument(QJsonObject::fromVariantMap(map)).toJson(QJsonDocument::Compact);
                         keep(encoded(QString::fromUtf8(json)).constData());
                     }});

    const QVariantMap many = smallTexts(size);
    cases.push_back({"custom format, build, texts of 100 bytes", size,
                     [many] { keep(custommime::build(many).constData()); },
                     [many] {
                         for (auto each = many.begin(); each != many.end(); ++each) {
                             keep(encoded(each.key()).constData());
                             keep(encoded(each->toString()).constData());
                         }
                     }});
    // The floor makes the same map, since a map is the answer: of shared texts, each copied once.
    const QByteArray manyBytes = custommime::build(many);
    cases.push_back({"custom format, parse, texts of 100 bytes", manyBytes.size(),
                     [manyBytes] { keep(custommime::parse(manyBytes)->size()); },
                     [many] {
                         QVariantMap copies;
                         for (auto each = many.begin(); each != many.end(); ++each) {
                             const QString value = each->toString();
                             copies.insert(QString(each.key().constData(), each.key().size()),
                                           QString(value.constData(), value.size()));
                         }
                         keep(copies.size());
                     }});
}

void addHtmlCases(std::vector<ClipboardCase>& cases, int size)
{
    const QByteArray line =
        "<p class=\"a\"><span style=\"color:red\">gr\xc3\xbcn \xe6\x96\x87 over the lazy dog</span></p>\r\n";
    const QByteArray fragment = line.repeated(size / line.size() + 1).left(size);
    const QByteArray bytes = htmlformat::build(fragment);
    const QByteArray office = "Version:1.0\r\n<html xmlns:o=\"urn:schemas-microsoft-com:office:office\">" +
                              fragment + "</html>\r\n";
    const auto copy = [](const QByteArray& from) {
        keep(QByteArray(from.constData(), from.size()).constData());
    };
    cases.push_back({"CF_HTML, build", fragment.size(),
                     [fragment] { keep(htmlformat::build(fragment).constData()); },
                     [fragment, copy] { copy(fragment); }});
    cases.push_back({"CF_HTML, parse", bytes.size(),
                     [bytes] { keep(htmlformat::document(bytes)->constData()); },
                     [bytes, copy] { copy(bytes); }});
    cases.push_back({"CF_HTML, parse, an office document is cut out", office.size(),
                     [office] { keep(htmlformat::cutOfficeDocument(office).constData()); },
                     [office, copy] { copy(office); }});
    cases.push_back({"CF_HTML, parse, nothing to cut", bytes.size(),
                     [bytes] { keep(htmlformat::cutOfficeDocument(bytes).constData()); },
                     [bytes, copy] { copy(bytes); }});
}

} // namespace

const std::vector<int> clipboardSizes = {1 << 10, 32 << 10, 1 << 20, 16 << 20, 64 << 20};

std::vector<ClipboardCase> clipboardCases(int size)
{
    std::vector<ClipboardCase> cases;
    addCustomCases(cases, size);
    addHtmlCases(cases, size);
    return cases;
}
