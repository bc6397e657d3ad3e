#include "offline/InjectScript.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <iterator>
#include <numeric>

namespace ninjectscript {
namespace {

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
    QLatin1String name;
    Line line;
};

constexpr NamedLine namedLines[] = {
    {QLatin1String("_LOCAL_INJECT_DATA_FILEINFO"),
     {Value::FileInfo, "\nwindow.__INJECT__._LOCAL_INJECT_DATA_FILEINFO = "}},
    {QLatin1String("_LOCAL_INJECT_DATA_OFFLINESWITCH"),
     {Value::OfflineSwitch, "\nwindow.__INJECT__._LOCAL_INJECT_DATA_OFFLINESWITCH = "}},
    {QLatin1String("_LOCAL_INJECT_DATA"),
     {Value::Content, "\nwindow.__INJECT__._LOCAL_INJECT_DATA = {};"
                      "\nwindow.__INJECT__._LOCAL_INJECT_DATA.content = "}},
    {QLatin1String("_LOCAL_INJECT_CACHE"), {Value::Cache, "\nwindow.__INJECT__._LOCAL_INJECT_CACHE = "}},
    {QLatin1String("_LOCAL_INJECT_DATA_SSRCONTENT"),
     {Value::SsrContent, "\nwindow.__INJECT__._LOCAL_INJECT_DATA_SSRCONTENT = "}},
    {QLatin1String("_LOCAL_INJECT_DATA_SSRCONTENT_TIMES"),
     {Value::SsrContentTimes, "\nwindow.__INJECT__._LOCAL_INJECT_DATA_SSRCONTENT_TIMES = "}},
    {QLatin1String("_LOCAL_CONNID"), {Value::ConnId, "\nwindow.__INJECT__._LOCAL_CONNID =\"", "\";"}},
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
                return name.isString() && name.toString() == line.name;
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

QByteArray escapedForScript(QByteArray bytes)
{
    return bytes.replace("</", "<\\/");
}

QByteArray csrJson(const QByteArray& csrHtml)
{
    const QByteArray escaped = escapedForScript(csrHtml);
    const QJsonObject object{{QStringLiteral("csr"), QString::fromUtf8(escaped.constData(), escaped.size())}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray validUtf8(const QByteArray& bytes)
{
    return QString::fromUtf8(bytes.constData(), bytes.size()).toUtf8();
}

} // namespace ninjectscript
