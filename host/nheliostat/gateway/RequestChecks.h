#pragma once

#include "gateway/RequestTarget.h"

#include <boost/system/error_code.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace gateway {

class RequestHead;
class RequestParser;

/** Why a request gets no answer but an error. */
struct Refusal
{
    int status = 0;
    std::string text;
    std::string_view headerLines = {}; //!< complete lines
    bool endsConnection = false;       //!< what follows on the connection cannot be trusted
};

/** For bytes that are no request head. */
Refusal refusalOfMalformedHead(const boost::system::error_code& error);

/** For a well-formed head; `allowed`: the request needs no credentials, or carries them. */
std::optional<Refusal> refusalOf(const RequestHead& head, const RequestParser& parser, bool allowed);

/** Where the request leads: in absolute form anywhere, in origin form only inside an opened tunnel (`inner`).
 */
std::optional<RequestTarget> targetOf(const RequestHead& head, const std::optional<Origin>& inner);

} // namespace gateway
