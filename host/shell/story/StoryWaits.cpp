#include "shell/story/StoryDraft.h"
#include "shell/story/StoryUrl.h"

#include <algorithm>
#include <cmath>

namespace shell::story {

namespace {

/** Times come from clocks that tick in whole milliseconds, and notes are made a little after the fact. */
constexpr double slackMs = 10;
constexpr double shortestWaitMs = 1;

int lastServerRequest(const OpenStory& story, const QString& name, double before)
{
    for (int i = story.serverRequests.size() - 1; i >= 0; --i) {
        const ServerRequest& request = story.serverRequests.at(i);
        if (request.name == name && request.startMs <= before)
            return i;
    }
    return -1;
}

void findReply(OpenStory& story, int index)
{
    BrowserRequest& request = story.browserRequests[index];
    if (request.by != AnsweredBy::Local || !asksForFetchedReply(request.url))
        return;
    const QString name = replyNameOf(requestKind(request.url));
    const int found = name.isEmpty() ? -1 : lastServerRequest(story, name, request.endMs);
    const bool isEmpty = request.bytes == 0;
    const bool arrived = found >= 0 && story.serverRequests.at(found).endMs <= request.endMs + slackMs;
    if (!arrived || isEmpty) {
        if (isEmpty && request.endMs - request.startMs >= shortestWaitMs)
            story.waits.append({index, arrived ? found : -1, request.startMs, request.endMs, !arrived});
        return;
    }
    request.reply = found;
    // Taken out and put back: the compiler takes a reference into the list for one into an empty list.
    ServerRequest server = story.serverRequests.at(found);
    server.status = request.status;
    server.bytes = request.bytes;
    story.serverRequests.replace(found, server);
    const double until = std::min(server.endMs, request.endMs);
    if (until - request.startMs >= shortestWaitMs)
        story.waits.append({index, found, request.startMs, until, false});
}

/** The load stood still while the version of the front end was not known. */
void findWaitOfLoad(const StoryDraft& draft, OpenStory& story)
{
    if (!draft.loadAt)
        return;
    double from = *draft.loadAt;
    if (draft.versionCheckGivenUpAt) {
        story.waits.append({-1, -1, from, *draft.versionCheckGivenUpAt, true});
        return;
    }
    // It may be asked only once the load was: setting up the page comes between.
    const int check = lastServerRequest(story, QStringLiteral("vcs"), story.totalMs());
    if (check < 0)
        return;
    const double answered = story.serverRequests.at(check).endMs;
    from = std::max(from, story.serverRequests.at(check).startMs);
    // Without a type the page always waits; with one, taking up another version as the answer comes tells of
    // it.
    const bool followed = draft.proxySwitchedAt && std::abs(*draft.proxySwitchedAt - answered) <= slackMs;
    if ((!draft.typeKnownAtLoad || followed) && answered - from >= shortestWaitMs)
        story.waits.append({-1, check, from, answered, false});
}

} // namespace

void findWaits(const StoryDraft& draft, OpenStory& story)
{
    findWaitOfLoad(draft, story);
    for (int i = 0; i < story.browserRequests.size(); ++i)
        findReply(story, i);
}

} // namespace shell::story
