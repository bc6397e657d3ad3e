#include "check.h"

#include "offline/InjectScript.h"

#include <QJsonArray>
#include <QJsonDocument>

// The input is the description of what is injected, a line, and a value behind it. No value ends or swallows
// the script element, and JSON text stays what it is.

namespace {

bool isHarmless(const QByteArray& text)
{
    const QByteArray lower = text.toLower();
    return !lower.contains("</") && !lower.contains("<!--") && !lower.contains("<script");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace ninjectscript;
    const QByteArray input = inputBytes(data, size);
    const int end = input.indexOf('\n');
    const QByteArray value = input.mid(end + 1);
    const QByteArray escaped = escapedForScript(value);
    check(isHarmless(escaped));
    check(isHarmless(escapedForScript(csrJson(value))));
    const QJsonDocument json = QJsonDocument::fromJson(value);
    if (!json.isNull() && isWholeExpression(value)) {
        check(isWholeExpression(escaped));
        check(QJsonDocument::fromJson(escaped) == json);
    }
    const QVariant list = QJsonDocument::fromJson(input.left(end)).array();
    const QByteArray page =
        pageWithScript("<p><!--__INJECT__--></p>", script(list, [&](Value) { return escaped; }));
    check(page.startsWith("<p>") && page.endsWith("</script></p>"));
    return 0;
}
