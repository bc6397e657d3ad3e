#include "zeolite/bridge/ReplyWriter.h"

#include <json/writer.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

/** Whether a byte stands in a JSON text as itself. */
constexpr std::array<bool, 256> plainBytes = [] {
    std::array<bool, 256> plain{};
    for (std::size_t byte = 0x20; byte < plain.size(); ++byte)
        plain[byte] = byte != '"' && byte != '\\';
    return plain;
}();

void appendEscaped(QByteArray& out, unsigned char byte)
{
    constexpr char digits[] = "0123456789abcdef";
    switch (byte) {
    case '"':
        out.append("\\\"");
        return;
    case '\\':
        out.append("\\\\");
        return;
    case '\n':
        out.append("\\n");
        return;
    case '\r':
        out.append("\\r");
        return;
    case '\t':
        out.append("\\t");
        return;
    default:
        out.append("\\u00").append(digits[byte >> 4]).append(digits[byte & 0xf]);
    }
}

void appendText(QByteArray& out, const char* begin, const char* end)
{
    const auto isSpecial = [](char c) { return !plainBytes[static_cast<unsigned char>(c)]; };
    out.append('"');
    for (const char* run = begin; run != end;) {
        const char* special = std::find_if(run, end, isSpecial);
        out.append(run, static_cast<int>(special - run));
        run = special;
        if (run != end)
            appendEscaped(out, static_cast<unsigned char>(*run++));
    }
    out.append('"');
}

void appendText(QByteArray& out, const std::string& text)
{
    appendText(out, text.data(), text.data() + text.size());
}

void appendValue(QByteArray& out, const Json::Value& value)
{
    switch (value.type()) {
    case Json::nullValue:
        out.append("null");
        break;
    case Json::intValue:
        out.append(QByteArray::number(qint64(value.asLargestInt())));
        break;
    case Json::uintValue:
        out.append(QByteArray::number(quint64(value.asLargestUInt())));
        break;
    case Json::realValue:
        out.append(Json::valueToString(value.asDouble()).c_str());
        break;
    case Json::booleanValue:
        out.append(value.asBool() ? "true" : "false");
        break;
    case Json::stringValue: {
        const char* begin = nullptr;
        const char* end = nullptr;
        if (value.getString(&begin, &end))
            appendText(out, begin, end);
        else
            out.append("\"\"");
        break;
    }
    case Json::arrayValue:
        out.append('[');
        for (auto element = value.begin(); element != value.end(); ++element) {
            if (element != value.begin())
                out.append(',');
            appendValue(out, *element);
        }
        out.append(']');
        break;
    case Json::objectValue:
        out.append('{');
        for (auto member = value.begin(); member != value.end(); ++member) {
            if (member != value.begin())
                out.append(',');
            appendText(out, member.name());
            out.append(':');
            appendValue(out, *member);
        }
        out.append('}');
        break;
    }
}

} // namespace

bool isWithheld(const Json::Value& reply)
{
    if (!reply.isObject())
        return false;
    const Json::Value& mark = reply["ignoreThisJsCallback"];
    return mark.isString() && mark.asString() == "true";
}

QByteArray writeReply(const Json::Value& reply)
{
    QByteArray out;
    appendValue(out, reply);
    return out;
}
