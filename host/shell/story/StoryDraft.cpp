#include "shell/story/StoryDraft.h"

#include "shell/story/StoryTexts.h"
#include "shell/story/StoryUrl.h"

#include <algorithm>

namespace shell::story {

namespace {

/** Requests that end this long after the document was there still belong to its opening. */
constexpr double tailMs = 2000;
/** What happened longer before the load than this was preparation, not the open. */
constexpr double leadMs = 2000;

QString field(const Event& event, const char* name)
{
    return event.fields.value(QLatin1String(name));
}

bool isTimed(const QString& step)
{
    return step == QLatin1String("initself") || step == QLatin1String("network_request");
}

/** The last occurrence of each name, in order: an event has one value for each. */
QStringList lastOccurrences(const QString& names)
{
    QStringList result;
    for (const QString& name : names.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        result.removeAll(name);
        result.append(name);
    }
    return result;
}

/** Where the scope of a timed step can have begun at the earliest. */
double beginOfScope(const QString& step, const QVector<Step>& before, double origin)
{
    const QString opener = step == QLatin1String("initself") ? QStringLiteral("init_self_load") : QString();
    double begin = origin;
    for (const Step& each : before) {
        if (!each.durationMs)
            begin = each.atMs;
        if (!opener.isEmpty() && each.name == opener)
            return each.atMs;
    }
    return begin;
}

std::optional<double> stepTime(const OpenStory& story, const char* name)
{
    for (const Step& step : story.steps) {
        if (step.name == QLatin1String(name))
            return step.atMs;
    }
    return {};
}

void shift(std::optional<double>& time, double by)
{
    if (time)
        *time += by;
}

/** The time at which the open began: the earliest of what belongs to it. */
double beginOf(const StoryDraft& draft)
{
    double begin = draft.loadAt.value_or(static_cast<double>(draft.firstNoteAt));
    const double earliest = begin - leadMs;
    const auto consider = [&begin, earliest](double at) {
        if (at >= earliest && at < begin)
            begin = at;
    };
    consider(static_cast<double>(draft.firstNoteAt));
    if (draft.pageMadeAt)
        consider(*draft.pageMadeAt);
    for (const Step& step : draft.story.steps)
        consider(step.atMs);
    for (const ServerRequest& request : draft.story.serverRequests)
        consider(request.startMs);
    for (const BrowserRequest& request : draft.story.browserRequests)
        consider(request.startMs);
    return begin;
}

} // namespace

double startOfServerRequest(const Event& event)
{
    return static_cast<double>(event.atMs) - std::max(0.0, field(event, "usetime").toDouble());
}

bool StoryDraft::takesRequest(const BrowserNote& request) const
{
    const double start = static_cast<double>(request.atMs) - request.ms;
    return start >= loadAt.value_or(static_cast<double>(firstNoteAt)) - leadMs;
}

void StoryDraft::addRequest(const BrowserNote& note)
{
    const double end = static_cast<double>(note.atMs);
    const double start = end - note.ms;
    if ((readyAt && start > *readyAt + tailMs) || story.browserRequests.size() >= mostBrowserRequests) {
        ++(note.by == AnsweredBy::Local ? story.laterLocal : story.laterNetwork);
        return;
    }
    story.browserRequests.append({note.method, note.url, note.by, note.status, note.bytes, start, end, -1});
    const bool isPage = requestKind(note.url) == RequestKind::Page;
    const bool answered = note.status > 0 && note.status < 400 && note.by != AnsweredBy::Refused;
    if (!answered)
        addTrouble(end, requestTroubleText(note));
    if (isPage && note.method == QLatin1String("GET"))
        story.failed = !answered;
}

void StoryDraft::addServerReply(const Event& event)
{
    ServerRequest request;
    request.name = field(event, "name");
    request.url = field(event, "url");
    request.startMs = startOfServerRequest(event);
    request.endMs = static_cast<double>(event.atMs);
    request.errorCode = field(event, "errorcode").toInt();
    if (field(event, "result") != QLatin1String("1"))
        addTrouble(request.endMs, serverTroubleText(request.name, request.errorCode));
    story.serverRequests.append(request);
}

void StoryDraft::addDecision(const Event& event)
{
    const QString error = field(event, "error_msg");
    if (field(event, "step_name") == QLatin1String("update_start"))
        proxySwitchedAt = static_cast<double>(event.atMs);
    if (!error.isEmpty() && error != QLatin1String("no_error"))
        addTrouble(static_cast<double>(event.atMs), refusalText(field(event, "step_name"), error));
}

void StoryDraft::addOpenStep(const Event& event)
{
    const double at = static_cast<double>(event.atMs);
    const QString step = field(event, "step");
    if (step == QLatin1String("load")) {
        loadAt = at;
        typeKnownAtLoad = !field(event, "office_type").isEmpty();
    } else if (step == QLatin1String("web_file_ready")) {
        readyAt = readyAt.value_or(at);
        story.failed = false;
    } else if (step == QLatin1String("load_error")) {
        story.failed = !readyAt;
        addTrouble(at, loadErrorText(field(event, "error_msg"), field(event, "error_code"),
                                     field(event, "browser_url")));
    }
}

void StoryDraft::addOpenTime(const Event& event)
{
    const QStringList names = lastOccurrences(field(event, "steps"));
    const auto isInstant = [](const QString& name) { return !isTimed(name); };
    const auto last = std::find_if(names.rbegin(), names.rend(), isInstant);
    if (last == names.rend())
        return;
    // The event is posted as soon as its last step is recorded.
    const double made = static_cast<double>(event.atMs) - event.fields.value(*last).toDouble();
    QVector<Step> steps;
    for (const QString& name : names) {
        const double value = event.fields.value(name).toDouble();
        if (isTimed(name))
            steps.append({name, beginOfScope(name, steps, made), value});
        else
            steps.append({name, made + value, {}});
    }
    story.steps = steps;
    pageMadeAt = made;
    for (const char* asked : {"init_self_load", "notify_later_load"}) {
        const std::optional<double> at = stepTime(story, asked);
        if (at && loadAt && *at <= *loadAt && *at >= *loadAt - leadMs)
            loadAt = at;
    }
    if (const std::optional<double> ready = stepTime(story, "web_file_ready"))
        readyAt = ready;
}

void StoryDraft::addTrouble(double at, const QString& text)
{
    constexpr int mostTroubles = 100;
    if (story.troubles.size() < mostTroubles)
        story.troubles.append({at, text});
}

OpenStory StoryDraft::finish() const
{
    OpenStory result = story;
    const double begin = beginOf(*this);
    result.beganAt = qRound64(begin);
    result.loadAskedMs = loadAt;
    result.readyMs = readyAt;
    result.loadedMs = loadedAt;
    findWaits(*this, result);
    for (std::optional<double>* time : {&result.loadAskedMs, &result.readyMs, &result.loadedMs})
        shift(*time, -begin);
    for (Step& step : result.steps)
        step.atMs -= begin;
    const auto shiftSpan = [begin](auto& span) {
        span.startMs -= begin;
        span.endMs -= begin;
    };
    std::for_each(result.serverRequests.begin(), result.serverRequests.end(), shiftSpan);
    std::for_each(result.browserRequests.begin(), result.browserRequests.end(), shiftSpan);
    for (Wait& wait : result.waits) {
        wait.fromMs -= begin;
        wait.untilMs -= begin;
    }
    for (Trouble& trouble : result.troubles)
        trouble.atMs -= begin;
    std::stable_sort(result.troubles.begin(), result.troubles.end(),
                     [](const Trouble& a, const Trouble& b) { return a.atMs < b.atMs; });
    return result;
}

} // namespace shell::story
