#include "offline/InjectScript.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <numeric>

namespace ninjectscript {
namespace {

constexpr int deepest = 1000; //!< brackets in each other

constexpr char beginning[] = "window.__INJECT__ = window.__INJECT__ || {};";

/** A value with the text before and after it. */
struct Line
{
    Value value;
    const char* before;
    const char* after = ";";
};

struct NamedLine
{
    const char* name;
    Line line;
};

constexpr NamedLine namedLines[] = {
    {"_LOCAL_INJECT_DATA_FILEINFO", {Value::FileInfo, "\nwindow.__INJECT__._LOCAL_INJECT_DATA_FILEINFO = "}},
    {"_LOCAL_INJECT_DATA_OFFLINESWITCH",
     {Value::OfflineSwitch, "\nwindow.__INJECT__._LOCAL_INJECT_DATA_OFFLINESWITCH = "}},
    {"_LOCAL_INJECT_DATA",
     {Value::Content, "\nwindow.__INJECT__._LOCAL_INJECT_DATA = {};"
                      "\nwindow.__INJECT__._LOCAL_INJECT_DATA.content = "}},
    {"_LOCAL_INJECT_CACHE", {Value::Cache, "\nwindow.__INJECT__._LOCAL_INJECT_CACHE = "}},
    {"_LOCAL_INJECT_DATA_SSRCONTENT",
     {Value::SsrContent, "\nwindow.__INJECT__._LOCAL_INJECT_DATA_SSRCONTENT = "}},
    {"_LOCAL_INJECT_DATA_SSRCONTENT_TIMES",
     {Value::SsrContentTimes, "\nwindow.__INJECT__._LOCAL_INJECT_DATA_SSRCONTENT_TIMES = "}},
    {"_LOCAL_CONNID", {Value::ConnId, "\nwindow.__INJECT__._LOCAL_CONNID =\"", "\";"}},
};

constexpr Line allLines[] = {
    {Value::FileInfo, "window.__INJECT__._LOCAL_INJECT_DATA_FILEINFO = "},
    {Value::OfflineSwitch, "window.__INJECT__._LOCAL_INJECT_DATA_OFFLINESWITCH = "},
    {Value::Content,
     "window.__INJECT__._LOCAL_INJECT_DATA = {};window.__INJECT__._LOCAL_INJECT_DATA.content = "},
    {Value::Cache, "window.__INJECT__._LOCAL_INJECT_CACHE = "},
    {Value::SsrContent, "window.__INJECT__._LOCAL_INJECT_DATA_SSRCONTENT = "},
    {Value::SsrContentTimes, "window.__INJECT__._LOCAL_INJECT_DATA_SSRCONTENT_TIMES = "},
    {Value::ConnId, "window.__INJECT__._LOCAL_CONNID = \"", "\";"},
};

/** How something is written in a text of the script. */
struct Escape
{
    int taken = 0; //!< bytes of it; 0: as it is
    const char* text = "";
    const char* behindBackslash = nullptr; //!< instead, where a backslash stands before it; null: as it is
};

bool startsWith(const char* at, const char* end, const char* text, bool anyCase = false)
{
    const auto size = std::ptrdiff_t(std::strlen(text));
    return end - at >= size &&
           (anyCase ? qstrnicmp(at, text, uint(size)) == 0 : std::memcmp(at, text, std::size_t(size)) == 0);
}

Escape escapeAt(const char* at, const char* end)
{
    if (*at == '<') {
        if (startsWith(at, end, "</"))
            return {2, "<\\/", "<\\/"};
        if (startsWith(at, end, "<!--") || startsWith(at, end, "<script", true))
            return {1, "\\u003c", "u003c"};
    } else if (*at == '\xe2') {
        if (startsWith(at, end, "\xe2\x80\xa8"))
            return {3, "\\u2028"};
        if (startsWith(at, end, "\xe2\x80\xa9"))
            return {3, "\\u2029"};
    }
    return {};
}

/** Whether an odd number of backslashes stands before `at`. */
bool isEscaped(const char* begin, const char* at)
{
    bool escaped = false;
    while (at != begin && *--at == '\\')
        escaped = !escaped;
    return escaped;
}

bool isSpace(char character)
{
    return character == ' ' || character == '\t' || character == '\n' || character == '\r';
}

void append(QByteArrayList& pieces, const Line& line, const ValueOf& valueOf)
{
    const QByteArray value = valueOf(line.value);
    pieces << line.before << (value.isEmpty() ? QByteArrayLiteral("null") : value) << line.after;
}

} // namespace

QByteArrayList script(const QVariant& list, const ValueOf& valueOf)
{
    QByteArrayList pieces{beginning};
    if (list.isNull()) {
        for (const Line& line : allLines)
            append(pieces, line, valueOf);
        return pieces;
    }
    const QJsonArray names = list.toJsonArray();
    if (names.isEmpty())
        return {};
    for (const QJsonValue& name : names) {
        const auto known =
            std::find_if(std::begin(namedLines), std::end(namedLines), [&name](const NamedLine& line) {
                return name.isString() && name.toString() == QLatin1String(line.name);
            });
        if (known != std::end(namedLines))
            append(pieces, known->line, valueOf);
    }
    return pieces;
}

QByteArray pageWithScript(const QByteArray& html, const QByteArrayList& script)
{
    const QByteArray marker = QByteArrayLiteral("<!--__INJECT__-->");
    QByteArrayList element{QByteArrayLiteral("<meta charset=\"utf-8\" /><script>")};
    element << script << QByteArrayLiteral("</script>");
    const int elementSize =
        std::accumulate(element.begin(), element.end(), 0,
                        [](int sum, const QByteArray& piece) { return sum + piece.size(); });
    QByteArray page;
    page.reserve(html.size() + html.count(marker) * elementSize);
    int copied = 0;
    for (int at = html.indexOf(marker); at >= 0; at = html.indexOf(marker, copied)) {
        page.append(html.constData() + copied, at - copied);
        for (const QByteArray& piece : element)
            page += piece;
        copied = at + marker.size();
    }
    return page.append(html.constData() + copied, html.size() - copied);
}

QByteArray closingTagsEscaped(QByteArray bytes)
{
    return bytes.replace("</", "<\\/");
}

QByteArray escapedForScript(const QByteArray& expression)
{
    const char* const begin = expression.constData();
    const char* const end = begin + expression.size();
    QByteArray escaped;
    const char* copied = begin;
    for (const char* at = begin; at != end; ++at) {
        const Escape escape = escapeAt(at, end);
        const char* const text =
            escape.taken > 0 && isEscaped(begin, at) ? escape.behindBackslash : escape.text;
        if (escape.taken == 0 || !text)
            continue;
        if (escaped.isEmpty())
            escaped.reserve(expression.size() + expression.size() / 16);
        escaped.append(copied, int(at - copied));
        escaped.append(text);
        at += escape.taken - 1;
        copied = at + 1;
    }
    return copied == begin ? expression : escaped.append(copied, int(end - copied));
}

bool isWholeExpression(const QByteArray& bytes)
{
    QByteArray open; // the closing brackets that are awaited
    char quote = 0;
    bool hasToken = false;
    for (int i = 0; i < bytes.size(); ++i) {
        const char character = bytes.at(i);
        if (quote != 0) {
            if (character == '\n' || character == '\r')
                return false;
            if (character == '\\')
                ++i;
            else if (character == quote)
                quote = 0;
            continue;
        }
        switch (character) {
        case '"':
        case '\'':
            quote = character;
            break;
        case '{':
        case '[':
        case '(':
            open += character == '(' ? ')' : char(character + 2);
            if (open.size() > deepest)
                return false;
            break;
        case '}':
        case ']':
        case ')':
            if (open.isEmpty() || open.back() != character)
                return false;
            open.chop(1);
            break;
        case '`':
        case '/':
        case ';':
        case '<':
        case '\0':
            return false;
        default:
            break;
        }
        hasToken = hasToken || !isSpace(character);
    }
    return quote == 0 && open.isEmpty() && hasToken;
}

QByteArray csrJson(const QByteArray& csrHtml)
{
    const QByteArray escaped = closingTagsEscaped(csrHtml);
    const QJsonObject object{{QStringLiteral("csr"), QString::fromUtf8(escaped.constData(), escaped.size())}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray validUtf8(const QByteArray& bytes)
{
    return QString::fromUtf8(bytes.constData(), bytes.size()).toUtf8();
}

} // namespace ninjectscript
