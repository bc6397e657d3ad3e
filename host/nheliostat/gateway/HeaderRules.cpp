#include "gateway/HeaderRules.h"

#include "gateway/RequestGateway.h"
#include "gateway/RequestHead.h"
#include "gateway/RequestTarget.h"
#include "gateway/ResponseHead.h"

#include <boost/beast/http/rfc7230.hpp>

#include <algorithm>
#include <charconv>

namespace gateway {
namespace {

namespace http = boost::beast::http;

bool namedByConnection(const MessageHead& head, std::string_view name)
{
    return std::any_of(head.fields.begin(), head.fields.end(), [name](const HeaderField& field) {
        return field.id == http::field::connection &&
               http::token_list(boost::beast::string_view(field.value.data(), field.value.size()))
                   .exists(boost::beast::string_view(name.data(), name.size()));
    });
}

void appendField(std::string& out, std::string_view name, std::string_view value)
{
    out.append(name).append(": ").append(value).append("\r\n");
}

/** Host is written from the target, and the view header never leaves the process. */
bool staysInside(const HeaderField& field)
{
    return field.id == http::field::host ||
           (field.id == http::field::unknown && equalsIgnoringCase(field.name, RequestGateway::viewHeader));
}

/** The end-to-end fields of `head`; with `upgrade` also what asks for or grants a protocol switch. */
void appendEndToEndFields(std::string& out, const MessageHead& head, bool keepLength, bool upgrade)
{
    const bool hasConnection =
        std::any_of(head.fields.begin(), head.fields.end(),
                    [](const HeaderField& field) { return field.id == http::field::connection; });
    for (const HeaderField& field : head.fields) {
        if (field.id == http::field::upgrade || field.id == http::field::content_length) {
            // These two decide how the message is read: nothing that Connection names can remove them.
            if (field.id == http::field::upgrade ? upgrade : keepLength)
                appendField(out, field.name, field.value);
            continue;
        }
        if (isHopByHop(field.id, field.name) || staysInside(field))
            continue;
        if (!hasConnection || !namedByConnection(head, field.name))
            appendField(out, field.name, field.value);
    }
    if (upgrade)
        appendField(out, "Connection", "Upgrade");
}

} // namespace

bool equalsIgnoringCase(std::string_view left, std::string_view right)
{
    return left.size() == right.size() &&
           std::equal(left.begin(), left.end(), right.begin(),
                      [](char a, char b) { return lowerAscii(a) == lowerAscii(b); });
}

bool isHeaderName(std::string_view name)
{
    constexpr std::string_view punctuation = "!#$%&'*+-.^_`|~";
    return !name.empty() && std::all_of(name.begin(), name.end(), [punctuation](char c) {
        const char lower = lowerAscii(c);
        return (lower >= 'a' && lower <= 'z') || (c >= '0' && c <= '9') ||
               punctuation.find(c) != std::string_view::npos;
    });
}

bool isHopByHop(http::field id, std::string_view name)
{
    switch (id) {
    case http::field::connection:
    case http::field::keep_alive:
    case http::field::te:
    case http::field::trailer:
    case http::field::transfer_encoding:
    case http::field::upgrade:
        return true;
    default:
        return equalsIgnoringCase(name.substr(0, 6), "Proxy-");
    }
}

std::string singleLine(std::string_view value)
{
    std::string text(value);
    text.erase(
        std::remove_if(text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n' || c == '\0'; }),
        text.end());
    return text;
}

void appendChunk(std::string& out, std::string_view piece)
{
    if (piece.empty())
        return;
    char size[16];
    const auto end = std::to_chars(size, size + sizeof size, piece.size(), 16);
    out.append(size, end.ptr).append("\r\n").append(piece).append("\r\n");
}

std::string upstreamRequestHead(const RequestHead& head, const RequestTarget& target, BodyFraming framing,
                                bool upgrade)
{
    std::string out;
    out.reserve(1024);
    out.append(head.method).append(" ").append(target.pathAndQuery()).append(" HTTP/1.1\r\n");
    appendField(out, "Host", target.origin.authority());

    appendEndToEndFields(out, head, framing == BodyFraming::Length || framing == BodyFraming::None, upgrade);
    if (framing == BodyFraming::Chunked)
        appendField(out, "Transfer-Encoding", "chunked");
    return out.append("\r\n");
}

std::string clientResponseHead(const ResponseHead& head, BodyFraming framing, bool close, bool upgrade)
{
    std::string out;
    out.reserve(1024);
    out.append("HTTP/1.1 ")
        .append(std::to_string(head.status))
        .append(" ")
        .append(head.reason)
        .append("\r\n");
    appendEndToEndFields(out, head, framing == BodyFraming::Length || framing == BodyFraming::None, upgrade);
    if (framing == BodyFraming::Chunked)
        appendField(out, "Transfer-Encoding", "chunked");
    if (close)
        appendField(out, "Connection", "close");
    return out.append("\r\n");
}

} // namespace gateway
