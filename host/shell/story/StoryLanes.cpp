#include "shell/story/StoryLanes.h"

#include "shell/story/StoryTexts.h"
#include "shell/story/StoryUrl.h"

#include <QMap>
#include <QSet>

#include <algorithm>

namespace shell::story {

namespace {

/** More requests than this in a lane are grouped. */
constexpr int mostSingleRequests = 12;
/** Bars of their own that are chosen for what they are, and for how long they took. */
constexpr int mostNotable = 9;
constexpr int longestKept = 3;

const QString separator = QStringLiteral(" · ");

double endOfAxis(const OpenStory& story)
{
    constexpr double mostTail = 1.3;
    const double total = story.totalMs();
    double last = std::max(total, story.loadedMs.value_or(0));
    for (const BrowserRequest& request : story.browserRequests)
        last = std::max(last, request.endMs);
    for (const ServerRequest& request : story.serverRequests)
        last = std::max(last, request.endMs);
    constexpr double shortest = 10;
    return std::max(shortest, std::min(last, total * mostTail));
}

LaneItem point(Tone tone, const QString& label, double atMs)
{
    LaneItem item;
    item.tone = tone;
    item.label = label;
    item.detail = label + separator + durationText(atMs);
    item.startMs = item.endMs = atMs;
    item.isPoint = true;
    return item;
}

LaneItem bar(Tone tone, const QString& label, double startMs, double endMs)
{
    LaneItem item;
    item.tone = tone;
    item.label = label;
    item.startMs = startMs;
    item.endMs = endMs;
    return item;
}

QString spanText(double startMs, double endMs)
{
    return QStringLiteral("%1 to %2").arg(durationText(startMs), durationText(endMs));
}

bool belongsToReadyLane(const QString& step)
{
    return step == QLatin1String("web_file_ready") || step == QLatin1String("load_finished") ||
           step == QLatin1String("share_dlg_ready");
}

/** Points that a reader could not tell apart become one. */
void addShellPoint(QVector<LaneItem>& items, const Step& step, double closeMs, QMap<int, int>& merged)
{
    constexpr int mostNames = 3;
    const QString text = stepText(step.name);
    const int last = items.size() - 1;
    if (last >= 0 && items.at(last).isPoint && step.atMs - items.at(last).startMs <= closeMs) {
        LaneItem& item = items[last];
        const int count = ++merged[last];
        if (count < mostNames)
            item.label += QStringLiteral(", ") + text.left(1).toLower() + text.mid(1);
        item.detail += QStringLiteral("; ") + text + separator + durationText(step.atMs);
        return;
    }
    items.append(point(Tone::Shell, text, step.atMs));
    merged[items.size() - 1] = 1;
}

Lane shellLane(const OpenStory& story, double endMs, QVector<Arrow>& arrows)
{
    constexpr double closeShare = 0.012;
    Lane lane{QStringLiteral("Shell"), {}};
    QMap<int, int> merged;
    QVector<Step> instants;
    for (const Step& step : story.steps) {
        if (step.atMs < 0 || step.atMs > endMs || belongsToReadyLane(step.name))
            continue;
        if (!step.durationMs) {
            instants.append(step);
            continue;
        }
        LaneItem item = bar(Tone::Shell, stepText(step.name) + separator + durationText(*step.durationMs),
                            step.atMs, step.atMs + *step.durationMs);
        item.detail = item.label;
        lane.items.append(item);
    }
    if (instants.isEmpty() && story.loadAskedMs)
        instants.append({QStringLiteral("init_self_load"), *story.loadAskedMs, {}});
    for (const Step& step : instants)
        addShellPoint(lane.items, step, endMs * closeShare, merged);
    for (const Wait& wait : story.waits) {
        if (wait.browserRequest >= 0)
            continue;
        const QString label = wait.gaveUp ? QStringLiteral("Load waited in vain for the version check")
                                          : QStringLiteral("Load waits for the version check");
        LaneItem item = bar(Tone::Wait, label + separator + durationText(wait.untilMs - wait.fromMs),
                            wait.fromMs, wait.untilMs);
        item.detail = item.label;
        lane.items.append(item);
        if (wait.serverRequest >= 0)
            arrows.append({1, wait.serverRequest, 0, lane.items.size() - 1, wait.untilMs});
    }
    return lane;
}

Lane serverLane(const OpenStory& story)
{
    Lane lane{QStringLiteral("Add-on asks the server"), {}};
    for (const ServerRequest& request : story.serverRequests) {
        QString label =
            serverRequestText(request.name) + separator + durationText(request.endMs - request.startMs);
        if (request.bytes)
            label += separator + sizeText(*request.bytes);
        if (request.errorCode != 0)
            label += QStringLiteral(" · failed");
        LaneItem item =
            bar(request.errorCode == 0 ? Tone::Server : Tone::Trouble, label, request.startMs, request.endMs);
        item.detail = spanText(request.startMs, request.endMs) + separator + request.url;
        lane.items.append(item);
    }
    return lane;
}

bool isFailure(const BrowserRequest& request)
{
    return request.by == AnsweredBy::Refused || request.status == 0 || request.status >= 400;
}

LaneItem requestItem(const OpenStory& story, int index)
{
    const BrowserRequest& request = story.browserRequests.at(index);
    const double took = request.endMs - request.startMs;
    QString label = browserRequestText(request.url) + separator + durationText(took);
    if (request.bytes > 0)
        label += separator + sizeText(request.bytes);
    if (isFailure(request))
        label += separator + (request.status ? QStringLiteral("status %1").arg(request.status)
                                             : QStringLiteral("no answer"));
    const Tone tone = request.by == AnsweredBy::Local ? Tone::Local : Tone::Network;
    LaneItem item = bar(isFailure(request) ? Tone::Trouble : tone, label, request.startMs, request.endMs);
    item.detail = QStringLiteral("%1 %2 · %3 · %4")
                      .arg(request.method, request.url, QString::number(request.status),
                           spanText(request.startMs, request.endMs));
    for (const Wait& wait : story.waits) {
        if (wait.browserRequest == index)
            item.waitedUntilMs = wait.untilMs;
    }
    return item;
}

/** Which of the requests keep bars of their own. */
QSet<int> notableOf(const OpenStory& story, const QVector<int>& requests)
{
    QSet<int> notable;
    const auto keep = [&notable](int index) {
        if (notable.size() < mostNotable)
            notable.insert(index);
    };
    for (const int index : requests) {
        const RequestKind kind = requestKind(story.browserRequests.at(index).url);
        if (kind == RequestKind::Page || !replyNameOf(kind).isEmpty())
            keep(index);
    }
    QVector<int> byLength = requests;
    std::stable_sort(byLength.begin(), byLength.end(), [&story](int a, int b) {
        const auto length = [&story](int i) {
            return story.browserRequests.at(i).endMs - story.browserRequests.at(i).startMs;
        };
        return length(a) > length(b);
    });
    for (int i = 0; i < std::min(longestKept, byLength.size()); ++i)
        keep(byLength.at(i));
    for (const int index : requests) {
        if (isFailure(story.browserRequests.at(index)))
            keep(index);
    }
    return notable;
}

LaneItem groupItem(const OpenStory& story, const QVector<int>& group)
{
    if (group.size() == 1)
        return requestItem(story, group.first());
    double startMs = story.browserRequests.at(group.first()).startMs;
    double endMs = startMs;
    qint64 bytes = 0;
    int failures = 0;
    for (const int index : group) {
        const BrowserRequest& request = story.browserRequests.at(index);
        endMs = std::max(endMs, request.endMs);
        bytes += request.bytes;
        failures += isFailure(request) ? 1 : 0;
    }
    QString label = QStringLiteral("%1 requests · %2").arg(group.size()).arg(sizeText(bytes));
    if (failures > 0)
        label += QStringLiteral(" · %1 failed").arg(failures);
    const bool isLocal = story.browserRequests.at(group.first()).by == AnsweredBy::Local;
    LaneItem item = bar(failures > 0 ? Tone::Trouble
                        : isLocal    ? Tone::Local
                                     : Tone::Network,
                        label, startMs, endMs);
    item.detail = label + separator + spanText(startMs, endMs);
    return item;
}

/** Neighbours in time, in groups of a limited length. */
QVector<LaneItem> grouped(const OpenStory& story, const QVector<int>& requests, double endMs)
{
    constexpr double longestShare = 0.16;
    constexpr double gapShare = 0.05;
    QVector<LaneItem> items;
    QVector<int> group;
    double groupEnd = 0;
    const auto close = [&] {
        if (!group.isEmpty())
            items.append(groupItem(story, group));
        group.clear();
    };
    for (const int index : requests) {
        const BrowserRequest& request = story.browserRequests.at(index);
        const bool fits =
            !group.isEmpty() && request.startMs - groupEnd <= endMs * gapShare &&
            request.endMs - story.browserRequests.at(group.first()).startMs <= endMs * longestShare;
        if (!fits) {
            close();
            groupEnd = request.endMs;
        }
        group.append(index);
        groupEnd = std::max(groupEnd, request.endMs);
    }
    close();
    return items;
}

Lane requestLane(const OpenStory& story, bool local, int number, Lanes& all)
{
    Lane lane{local ? QStringLiteral("Answered on this computer") : QStringLiteral("Asked over the network"),
              {}};
    QVector<int> requests;
    for (int i = 0; i < story.browserRequests.size(); ++i) {
        const BrowserRequest& request = story.browserRequests.at(i);
        if ((request.by == AnsweredBy::Local) != local)
            continue;
        if (request.startMs > all.endMs)
            ++all.leftOut;
        else
            requests.append(i);
    }
    std::stable_sort(requests.begin(), requests.end(), [&story](int a, int b) {
        return story.browserRequests.at(a).startMs < story.browserRequests.at(b).startMs;
    });
    const QSet<int> notable = requests.size() > mostSingleRequests
                                  ? notableOf(story, requests)
                                  : QSet<int>(requests.begin(), requests.end());
    QVector<int> rest;
    for (const int index : requests) {
        if (!notable.contains(index)) {
            rest.append(index);
            continue;
        }
        lane.items.append(requestItem(story, index));
        for (const Wait& wait : story.waits) {
            if (wait.browserRequest == index && wait.serverRequest >= 0)
                all.arrows.append({1, wait.serverRequest, number, lane.items.size() - 1, wait.untilMs});
        }
    }
    lane.items += grouped(story, rest, all.endMs);
    return lane;
}

/** When the browser had the page that became the document. */
std::optional<double> pageReceived(const OpenStory& story)
{
    std::optional<double> at;
    for (const BrowserRequest& request : story.browserRequests) {
        if (requestKind(request.url) == RequestKind::Page && !isFailure(request))
            at = request.endMs;
    }
    return at;
}

Lane readyLane(const OpenStory& story, double endMs)
{
    Lane lane{QStringLiteral("Document ready"), {}};
    const auto add = [&](const QString& text, const std::optional<double>& at) {
        if (at && *at >= 0 && *at <= endMs)
            lane.items.append(point(Tone::Ready, text + separator + durationText(*at), *at));
    };
    const std::optional<double> received = pageReceived(story);
    if (received && story.readyMs && *story.readyMs > *received) {
        const QString text = QStringLiteral("The browser runs the front end");
        LaneItem item = bar(Tone::Ready, text + separator + durationText(*story.readyMs - *received),
                            *received, *story.readyMs);
        item.detail = spanText(*received, *story.readyMs);
        lane.items.append(item);
    }
    add(stepText(QStringLiteral("web_file_ready")), story.readyMs);
    add(stepText(QStringLiteral("load_finished")), story.loadedMs);
    for (const Step& step : story.steps) {
        if (step.name == QLatin1String("share_dlg_ready"))
            add(stepText(step.name), step.atMs);
    }
    return lane;
}

Lane troubleLane(const OpenStory& story, double endMs)
{
    constexpr int mostNumbered = 8;
    Lane lane{QStringLiteral("What went wrong"), {}};
    for (int i = 0; i < std::min(mostNumbered, story.troubles.size()); ++i) {
        const Trouble& trouble = story.troubles.at(i);
        LaneItem item = point(Tone::Trouble, QString::number(i + 1), std::clamp(trouble.atMs, 0.0, endMs));
        item.detail = trouble.text;
        lane.items.append(item);
    }
    return lane;
}

} // namespace

Lanes lanesOf(const OpenStory& story)
{
    Lanes result;
    result.endMs = endOfAxis(story);
    result.lanes.append(shellLane(story, result.endMs, result.arrows));
    result.lanes.append(serverLane(story));
    result.lanes.append(requestLane(story, true, 2, result));
    result.lanes.append(requestLane(story, false, 3, result));
    result.lanes.append(readyLane(story, result.endMs));
    if (!story.troubles.isEmpty())
        result.lanes.append(troubleLane(story, result.endMs));
    return result;
}

} // namespace shell::story
