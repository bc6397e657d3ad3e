#include "check.h"

#include "gateway/HeadScanner.h"
#include "gateway/HeaderRules.h"
#include "gateway/ResponseHead.h"

#include <boost/asio/buffer.hpp>
#include <boost/beast/http/error.hpp>

#include <optional>

// What a server sends, in pieces whose sizes the first bytes say: a head that the gateway takes becomes one
// that a browser takes, and chunks that are written anew hold the same body.

using namespace gateway;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    const std::size_t pieceSize = std::size_t(data[0]) + 1;
    const bool bodiless = (data[1] & 1) != 0;
    ResponseHead head;
    std::string body;
    std::optional<ResponseParser> parser;
    parser.emplace(head, body, bodiless);
    HeadScanner scanner;
    std::string input;
    std::string passedOn;
    std::size_t bodySize = 0;
    for (std::size_t at = 2; at < size;) {
        const std::size_t piece = std::min(pieceSize, size - at);
        input.append(reinterpret_cast<const char*>(data) + at, piece);
        at += piece;
        for (bool goesOn = true; goesOn && !input.empty();) {
            const bool hadHead = parser->is_header_done();
            if (!hadHead) {
                const std::size_t headSize = scanner.headSize(input);
                if (headSize == 0)
                    break;
                check(headSize == input.find("\r\n\r\n") + 4);
                head.reset(headSize);
                scanner.restart();
            }
            boost::system::error_code error;
            const std::size_t taken = hadHead ? parseBody(*parser, boost::asio::buffer(input), error)
                                              : parser->put(boost::asio::buffer(input), error);
            input.erase(0, taken);
            if (error && (error != boost::beast::http::error::need_more || !hadHead))
                return 0;
            if (!hadHead) {
                ResponseHead again;
                std::string none;
                const std::string text = clientResponseHead(head, BodyFraming::Chunked, false, false);
                again.reset(text.size());
                ResponseParser browser(again, none, true);
                boost::system::error_code refused;
                browser.put(boost::asio::buffer(text), refused);
                check(!refused && browser.is_header_done() && again.status == head.status);
            }
            bodySize += body.size();
            appendChunk(passedOn, body);
            body.clear();
            if (parser->is_header_done() && head.status / 100 == 1 && head.status != 101)
                parser.emplace(head, body, bodiless);
            else if (parser->is_done())
                return 0;
            goesOn = taken > 0;
        }
    }
    check(bodySize <= size && passedOn.size() >= bodySize);
    return 0;
}
