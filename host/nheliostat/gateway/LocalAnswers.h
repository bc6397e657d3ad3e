#pragma once

#include "gateway/Answers.h"

#include <optional>

namespace gateway {

class RequestHead;
class ViewRegistry;
struct RequestTarget;
struct ViewRoutes;

/** What an answer to `head` has to look like when the connection goes on (`keepAlive`) or ends with it. */
AnswerForm answerForm(const RequestHead& head, bool keepAlive);

/**
 * The answer to a GET or HEAD below one of the view's directories: the file, 304 or 404. Nothing when no
 * directory is responsible, or has no file for a request that needs one.
 */
std::optional<Answer> localFileAnswer(const ViewRoutes& routes, const RequestHead& head,
                                      const RequestTarget& target, const AnswerForm& form);

/** Whether the path is one of those under which one-time replies are published. */
bool isReplyTarget(const RequestTarget& target);

/** The one-time reply, which is gone afterwards; 404 for another view, another method and the second time. */
Answer oneTimeAnswer(ViewRegistry& views, const RequestHead& head, const RequestTarget& target,
                     const AnswerForm& form);

} // namespace gateway
