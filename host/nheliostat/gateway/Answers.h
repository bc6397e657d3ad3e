#pragma once

#include "gateway/FileHandle.h"
#include "gateway/RequestGateway.h"

#include <string>
#include <string_view>

namespace gateway {

struct LocalFile;
struct OneTimeReply;

/** What the request asks of any answer. */
struct AnswerForm
{
    bool headOnly = false;           //!< a HEAD request
    bool reads = true;               //!< a GET or HEAD request
    std::string_view ifNoneMatch;    //!< tags of what the browser has; empty when it has nothing
    std::string_view connectionLine; //!< a complete Connection line, or empty when the default holds
};

/** A complete answer made inside the gateway, ready to be written. */
struct Answer
{
    GatewayRequestRecord::AnsweredBy by = GatewayRequestRecord::AnsweredBy::Refused;
    int status = 0;
    std::string head; //!< up to and including the empty line
    QByteArray body;  //!< shared with whoever made it
    FileHandle file;  //!< sent instead of `body` when open
    qint64 bodyBytes = 0;
};

/** The body that a handler's answer carries, shared. */
QByteArray bodyOfHandlerAnswer(const QVariantMap& answer);

/**
 * 200 with the headers and the body of a handler's answer, or 304 when the browser has it already. Headers
 * that would break the message (bad names, line breaks, hop-by-hop fields, Content-Length) are dropped or
 * cleaned; a missing Content-Type follows from `path`, a missing Cache-Control from the path, the type and
 * the body; a Cache-Control that would let the browser keep a page, an API answer or an empty body is
 * replaced.
 */
Answer handlerAnswer(const QVariantMap& answer, std::string_view path, const AnswerForm& form);

/** 200 with a local file, for a URL with `path`. */
Answer fileAnswer(LocalFile file, std::string_view path, const AnswerForm& form);
/** 304 for a local file that the browser has already. */
Answer unchangedFileAnswer(const LocalFile& file, std::string_view path, const AnswerForm& form);

Answer replyAnswer(OneTimeReply reply, const AnswerForm& form);

/** A refusal or failure with `text` for people as its body. `headerLines` are complete lines. */
Answer errorAnswer(int status, std::string_view text, const AnswerForm& form,
                   std::string_view headerLines = {});

} // namespace gateway
