#include "shell/story/StoryJson.h"

#include "shell/story/StoryTexts.h"

#include <QJsonArray>

#include <cmath>

namespace shell::story {

namespace {

/** Tenths of a millisecond: more digits say nothing. */
double rounded(double ms)
{
    constexpr double perMs = 10;
    return std::round(ms * perMs) / perMs;
}

QString outcomeName(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Ready:
        return QStringLiteral("ready");
    case Outcome::Loaded:
        return QStringLiteral("loaded");
    case Outcome::Failed:
        return QStringLiteral("failed");
    case Outcome::UnderWay:
        break;
    }
    return QStringLiteral("underWay");
}

QString answeredByName(AnsweredBy by)
{
    switch (by) {
    case AnsweredBy::Local:
        return QStringLiteral("local");
    case AnsweredBy::Network:
        return QStringLiteral("network");
    case AnsweredBy::Refused:
        break;
    }
    return QStringLiteral("refused");
}

QJsonObject stepObject(const Step& step)
{
    QJsonObject object{{QStringLiteral("name"), step.name},
                       {QStringLiteral("text"), stepText(step.name)},
                       {QStringLiteral("atMs"), rounded(step.atMs)}};
    if (step.durationMs)
        object.insert(QStringLiteral("durationMs"), rounded(*step.durationMs));
    return object;
}

QJsonObject serverObject(const ServerRequest& request)
{
    QJsonObject object{{QStringLiteral("name"), request.name},
                       {QStringLiteral("url"), request.url},
                       {QStringLiteral("startMs"), rounded(request.startMs)},
                       {QStringLiteral("endMs"), rounded(request.endMs)},
                       {QStringLiteral("errorCode"), request.errorCode}};
    if (request.status)
        object.insert(QStringLiteral("status"), *request.status);
    if (request.bytes)
        object.insert(QStringLiteral("bytes"), *request.bytes);
    return object;
}

QJsonObject browserObject(const OpenStory& story, const BrowserRequest& request)
{
    QJsonObject object{{QStringLiteral("method"), request.method},
                       {QStringLiteral("url"), request.url},
                       {QStringLiteral("by"), answeredByName(request.by)},
                       {QStringLiteral("status"), request.status},
                       {QStringLiteral("bytes"), request.bytes},
                       {QStringLiteral("startMs"), rounded(request.startMs)},
                       {QStringLiteral("endMs"), rounded(request.endMs)}};
    if (request.reply >= 0)
        object.insert(QStringLiteral("reply"), story.serverRequests.at(request.reply).name);
    return object;
}

QJsonObject waitObject(const OpenStory& story, const Wait& wait)
{
    QJsonObject object{{QStringLiteral("who"), wait.browserRequest < 0
                                                   ? QStringLiteral("load")
                                                   : story.browserRequests.at(wait.browserRequest).url},
                       {QStringLiteral("fromMs"), rounded(wait.fromMs)},
                       {QStringLiteral("untilMs"), rounded(wait.untilMs)},
                       {QStringLiteral("gaveUp"), wait.gaveUp}};
    if (wait.serverRequest >= 0)
        object.insert(QStringLiteral("forReply"), story.serverRequests.at(wait.serverRequest).name);
    return object;
}

template <typename Items, typename ToObject>
QJsonArray arrayOf(const Items& items, ToObject toObject)
{
    QJsonArray array;
    for (const auto& item : items)
        array.append(toObject(item));
    return array;
}

void insertTime(QJsonObject& object, const QString& name, const std::optional<double>& ms)
{
    if (ms)
        object.insert(name, rounded(*ms));
}

} // namespace

QJsonObject toJson(const OpenStory& story)
{
    QJsonArray local;
    QJsonArray network;
    for (const BrowserRequest& request : story.browserRequests)
        (request.by == AnsweredBy::Local ? local : network).append(browserObject(story, request));
    QJsonObject marks;
    insertTime(marks, QStringLiteral("load"), story.loadAskedMs);
    insertTime(marks, QStringLiteral("webFileReady"), story.readyMs);
    insertTime(marks, QStringLiteral("loadFinished"), story.loadedMs);
    return {
        {QStringLiteral("format"), 1},
        {QStringLiteral("document"), documentName(story)},
        {QStringLiteral("page"), story.page},
        {QStringLiteral("traceId"), story.traceId},
        {QStringLiteral("url"), story.url},
        {QStringLiteral("officeType"), story.officeType},
        {QStringLiteral("beganAt"), story.beganAt},
        {QStringLiteral("outcome"), outcomeName(story.outcome())},
        {QStringLiteral("totalMs"), rounded(story.totalMs())},
        {QStringLiteral("marks"), marks},
        {QStringLiteral("steps"), arrayOf(story.steps, &stepObject)},
        {QStringLiteral("serverRequests"), arrayOf(story.serverRequests, &serverObject)},
        {QStringLiteral("localAnswers"), local},
        {QStringLiteral("networkRequests"), network},
        {QStringLiteral("waits"),
         arrayOf(story.waits, [&story](const Wait& wait) { return waitObject(story, wait); })},
        {QStringLiteral("troubles"), arrayOf(story.troubles,
                                             [](const Trouble& trouble) {
                                                 return QJsonObject{
                                                     {QStringLiteral("atMs"), rounded(trouble.atMs)},
                                                     {QStringLiteral("text"), trouble.text}};
                                             })},
        {QStringLiteral("laterRequests"), QJsonObject{{QStringLiteral("local"), story.laterLocal},
                                                      {QStringLiteral("network"), story.laterNetwork}}},
    };
}

} // namespace shell::story
