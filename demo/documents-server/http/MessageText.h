#pragma once

#include <optional>
#include <string>

#include <boost/beast/http/buffer_body.hpp>
#include <boost/beast/http/message.hpp>

#include "http/HttpMessage.h"

namespace documents {

using RequestHead = boost::beast::http::request_header<>;

/** The request without its body. */
HttpRequest toRequest(const RequestHead& head);

/** The reply's head as sent. */
std::string headText(const HttpReply& reply, unsigned version, bool keepAlive);

/** True when a reply of that status has a body, be it empty. */
bool hasBody(int status);

/** What to tell a client whose request could not be read; nothing when the connection itself failed. */
std::optional<HttpReply> replyToBrokenRequest(const boost::system::error_code& error,
                                              const QByteArray& target);

/** 413 for a body beyond that many bytes. */
HttpReply tooLargeReply(const QByteArray& target, std::uint64_t limit);

} // namespace documents
