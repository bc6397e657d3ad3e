#include "gateway/LocalAnswers.h"

#include "gateway/LocalFiles.h"
#include "gateway/RequestHead.h"
#include "gateway/RequestTarget.h"
#include "gateway/ViewRegistry.h"

namespace gateway {

namespace http = boost::beast::http;

AnswerForm answerForm(const RequestHead& head, bool keepAlive)
{
    AnswerForm form;
    form.headOnly = head.verb == http::verb::head;
    form.reads = form.headOnly || head.verb == http::verb::get;
    form.ifNoneMatch = head.ifNoneMatch;
    if (head.version == 11 && !keepAlive)
        form.connectionLine = "Connection: close\r\n";
    else if (head.version == 10 && keepAlive)
        form.connectionLine = "Connection: keep-alive\r\n";
    return form;
}

std::optional<Answer> localFileAnswer(const ViewRoutes& routes, const RequestHead& head,
                                      const RequestTarget& target, const AnswerForm& form)
{
    const LocalDirectory* directory = routes.directoryFor(target.url);
    if (!directory || (head.verb != http::verb::get && head.verb != http::verb::head))
        return std::nullopt;

    const auto path = relativeFilePath(*urlBelow(target.url, directory->urlPrefix));
    std::optional<LocalFile> file = path ? openBelow(directory->directory, *path) : std::nullopt;
    if (!file && head.needsContent)
        return std::nullopt;
    if (!file) {
        Answer missing = errorAnswer(404, "no such file", form);
        missing.by = GatewayRequestRecord::AnsweredBy::Local;
        return missing;
    }
    if (isUnchanged(*file, head.ifNoneMatch, head.ifModifiedSince))
        return unchangedFileAnswer(*file, target.path(), form);
    return fileAnswer(std::move(*file), target.path(), form);
}

bool isReplyTarget(const RequestTarget& target)
{
    return target.pathAndQuery().substr(0, replyPath.size()) == replyPath;
}

Answer oneTimeAnswer(ViewRegistry& views, const RequestHead& head, const RequestTarget& target,
                     const AnswerForm& form)
{
    std::optional<OneTimeReply> reply;
    if (head.verb == http::verb::get)
        reply = views.takeReply(head.viewId, target.url);
    return reply ? replyAnswer(std::move(*reply), form) : errorAnswer(404, "no such reply", form);
}

} // namespace gateway
