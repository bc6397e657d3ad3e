#include "check.h"

#include "gateway/ClientLink.h"
#include "gateway/HeaderRules.h"
#include "gateway/RequestChecks.h"

// What a browser sends, in pieces whose sizes the first bytes say: a head that the gateway takes becomes one
// that a server takes the same way, and what is kept of a message stays within the limits.

using namespace gateway;

namespace {

/** Parses one head out of whole bytes; no head when that is none. */
bool isHead(const std::string& text)
{
    RequestHead head;
    head.reset(text.size());
    RequestParser parser(head);
    boost::system::error_code error;
    const std::size_t taken = parser.put(boost::asio::buffer(text), error);
    return !error && parser.is_header_done() && taken == text.size();
}

void checkHead(ClientLink& link)
{
    check(!link.head.method.empty() && !link.head.target.empty());
    const bool isRefused = refusalOf(link.head, *link.parser, true).has_value();
    const std::optional<RequestTarget> target =
        targetOf(link.head, Origin{Scheme::Https, HostPort{"docs.test", 443}});
    if (isRefused || !target)
        return;
    const BodyFraming framing = link.parser->is_done()   ? BodyFraming::None
                                : link.parser->chunked() ? BodyFraming::Chunked
                                                         : BodyFraming::Length;
    check(isHead(upstreamRequestHead(link.head, *target, framing, link.parser->upgrade())));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1)
        return 0;
    const std::size_t pieceSize = std::size_t(data[0]) + 1;
    ClientLink link(nullptr);
    std::string body;
    bool hasHead = false;
    for (std::size_t at = 1; at < size;) {
        const std::size_t piece = std::min(pieceSize, size - at);
        const auto space = link.input.prepare(piece);
        std::copy_n(data + at, piece, static_cast<std::uint8_t*>(space.data()));
        link.input.commit(piece);
        at += piece;
        for (bool goesOn = true; goesOn && link.input.size() > 0;) {
            boost::system::error_code error;
            const std::size_t before = link.input.size();
            if (!hasHead) {
                hasHead = link.parseHead(error);
                if (hasHead) {
                    checkHead(link);
                    link.parser->collectBody(&body);
                }
            } else if (!link.parser->is_done()) {
                link.input.consume(parseBody(*link.parser, link.input.data(), error));
            }
            if (hasHead && link.parser->is_done()) { // the next request
                link.startRequest();
                body.clear();
                hasHead = false;
            }
            if (error && error != boost::beast::http::error::need_more)
                return 0;
            check(body.size() <= size);
            goesOn = link.input.size() < before;
        }
    }
    return 0;
}
