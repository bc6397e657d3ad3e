#include "shell/story/OpenStory.h"

#include "shell/story/StoryDraft.h"
#include "shell/story/StoryTexts.h"
#include "shell/story/StoryUrl.h"

#include <QHash>

#include <algorithm>
#include <iterator>
#include <utility>

namespace shell::story {

namespace {

constexpr int mostUnplacedRequests = 300;

QString field(const Event& event, const char* name)
{
    return event.fields.value(QLatin1String(name));
}

QString traceOf(const Event& event)
{
    const QString trace = field(event, "trace_id");
    return trace.isEmpty() ? field(event, "traceid") : trace;
}

QString urlOf(const Event& event)
{
    const QString url = field(event, "notify_url");
    return url.isEmpty() ? field(event, "notifyUrl") : url;
}

bool isStep(const Event& event, const char* step)
{
    return event.name == QLatin1String("docs_cloud_open") && field(event, "step") == QLatin1String(step);
}

/** Takes note after note and sorts them into the stories they belong to. */
class Collector
{
public:
    void operator()(const Event& event);
    void operator()(const BrowserNote& request);
    void operator()(const PageNote& note);
    QVector<OpenStory> finish() const;

private:
    StoryDraft& draftOf(const Event& event);
    StoryDraft& begin(const Event& event);
    StoryDraft* draftOfFile(const Event& event);
    StoryDraft* draftOfPage(int page);
    void placeServerReply(const Event& event);
    /** Whether the request tells which page the story's document is shown in. */
    void recognisePage(const BrowserNote& request);
    void link(StoryDraft& draft, int page);

    std::deque<StoryDraft> m_drafts;
    QHash<int, int> m_draftOfPage; //!< page to its latest story
    QHash<int, QVector<BrowserNote>> m_unplaced;
    QHash<int, QString> m_titles;
    QVector<Event> m_unplacedReplies;
};

void Collector::operator()(const Event& event)
{
    if (event.name == QLatin1String("docs_localproxy_dop_network"))
        return placeServerReply(event);
    if (event.name == QLatin1String("docs_localproxy_dop_active")) {
        if (!m_drafts.empty() && field(event, "errormsg") != QLatin1String("no_error"))
            m_drafts.back().addTrouble(static_cast<double>(event.atMs), activationText(event.fields));
        return;
    }
    if (event.name == QLatin1String("docs_cloud_open")) {
        draftOf(event).addOpenStep(event);
    } else if (event.name == QLatin1String("docs_cloud_opentime")) {
        draftOf(event).addOpenTime(event);
    } else if (event.name == QLatin1String("docs_localproxy_dop_result")) {
        draftOf(event).addDecision(event);
    } else if (event.name == QLatin1String("docs_cloud_vcsrequesttimeout")) {
        StoryDraft* draft = draftOfFile(event);
        if (!draft)
            return;
        draft->versionCheckGivenUpAt = static_cast<double>(event.atMs);
        draft->addTrouble(static_cast<double>(event.atMs), versionCheckTimeoutText());
    }
}

StoryDraft& Collector::draftOf(const Event& event)
{
    const QString trace = traceOf(event);
    const QString url = urlOf(event);
    const auto found = std::find_if(m_drafts.rbegin(), m_drafts.rend(), [&](const StoryDraft& draft) {
        return draft.story.traceId == trace && (!trace.isEmpty() || placeOf(draft.story.url) == placeOf(url));
    });
    if (found == m_drafts.rend())
        return begin(event);
    const bool isAnotherDocument = !url.isEmpty() && placeOf(url) != placeOf(found->story.url);
    if (isAnotherDocument || (isStep(event, "load") && found->loadAt)) {
        const int page = found->story.page;
        StoryDraft& next = begin(event);
        if (page)
            link(next, page);
        return next;
    }
    if (!url.isEmpty())
        found->story.url = url;
    return *found;
}

StoryDraft& Collector::begin(const Event& event)
{
    StoryDraft draft;
    draft.firstNoteAt = event.atMs;
    draft.story.traceId = traceOf(event);
    draft.story.url = urlOf(event);
    draft.story.officeType = field(event, "office_type");
    m_drafts.push_back(draft);
    const QVector<Event> replies = std::exchange(m_unplacedReplies, {});
    for (const Event& reply : replies)
        placeServerReply(reply);
    return m_drafts.back();
}

/** The latest story whose document the event's URL is about. */
StoryDraft* Collector::draftOfFile(const Event& event)
{
    const QString url = event.fields.value(QStringLiteral("url"), urlOf(event));
    const QStringList parts = QString(placeOf(url)).split(QLatin1Char('/'));
    const auto found = std::find_if(m_drafts.rbegin(), m_drafts.rend(), [&parts](const StoryDraft& draft) {
        const QString file = fileNameOf(draft.story.url);
        return !file.isEmpty() && parts.contains(file);
    });
    return found == m_drafts.rend() ? nullptr : &*found;
}

StoryDraft* Collector::draftOfPage(int page)
{
    const auto found = m_draftOfPage.constFind(page);
    return found == m_draftOfPage.constEnd() ? nullptr : &m_drafts.at(static_cast<std::size_t>(*found));
}

void Collector::placeServerReply(const Event& event)
{
    constexpr int mostUnplacedReplies = 50;
    if (StoryDraft* draft = draftOfFile(event))
        return draft->addServerReply(event);
    // One that names no document belongs to the story that was under way.
    if (field(event, "name") == QLatin1String("get_res_pck_info") && !m_drafts.empty())
        return m_drafts.back().addServerReply(event);
    if (m_unplacedReplies.size() < mostUnplacedReplies)
        m_unplacedReplies.append(event);
}

void Collector::link(StoryDraft& draft, int page)
{
    draft.story.page = page;
    if (m_titles.contains(page))
        draft.story.title = m_titles.value(page);
    const auto index = std::find_if(m_drafts.begin(), m_drafts.end(),
                                    [&draft](const StoryDraft& each) { return &each == &draft; });
    m_draftOfPage.insert(page, static_cast<int>(std::distance(m_drafts.begin(), index)));
    for (const BrowserNote& request : m_unplaced.take(page)) {
        if (draft.takesRequest(request))
            draft.addRequest(request);
    }
}

void Collector::recognisePage(const BrowserNote& request)
{
    if (requestKind(request.url) != RequestKind::Page)
        return;
    const QString trace = queryOf(request.url, QStringLiteral("traceId"));
    const auto found = std::find_if(m_drafts.rbegin(), m_drafts.rend(), [&](const StoryDraft& draft) {
        if (placeOf(draft.story.url) != placeOf(request.url))
            return false;
        return trace.isEmpty() ? draft.story.page == 0 : draft.story.traceId == trace;
    });
    if (found != m_drafts.rend() && draftOfPage(request.page) != &*found)
        link(*found, request.page);
}

void Collector::operator()(const BrowserNote& request)
{
    if (request.page == 0)
        return;
    recognisePage(request);
    if (StoryDraft* draft = draftOfPage(request.page)) {
        draft->addRequest(request);
        return;
    }
    QVector<BrowserNote>& unplaced = m_unplaced[request.page];
    if (unplaced.size() < mostUnplacedRequests)
        unplaced.append(request);
}

void Collector::operator()(const PageNote& note)
{
    StoryDraft* draft = draftOfPage(note.page);
    if (note.what == QLatin1String("titleChanged")) {
        m_titles.insert(note.page, note.title);
        if (draft)
            draft->story.title = note.title;
    } else if (note.what == QLatin1String("loadFinished") && draft) {
        draft->loadedAt = draft->loadedAt.value_or(static_cast<double>(note.atMs));
    } else if (note.what == QLatin1String("webFileReady") && draft) {
        draft->readyAt = draft->readyAt.value_or(static_cast<double>(note.atMs));
    } else if (note.what == QLatin1String("closed")) {
        m_draftOfPage.remove(note.page);
        m_unplaced.remove(note.page);
        m_titles.remove(note.page);
    }
}

QVector<OpenStory> Collector::finish() const
{
    QVector<OpenStory> stories;
    for (const StoryDraft& draft : m_drafts)
        stories.append(draft.finish());
    return stories;
}

} // namespace

Outcome OpenStory::outcome() const
{
    if (failed)
        return Outcome::Failed;
    if (readyMs)
        return Outcome::Ready;
    return loadedMs ? Outcome::Loaded : Outcome::UnderWay;
}

double OpenStory::totalMs() const
{
    if (readyMs)
        return *readyMs;
    double last = loadedMs.value_or(loadAskedMs.value_or(0));
    for (const ServerRequest& request : serverRequests)
        last = std::max(last, request.endMs);
    for (const BrowserRequest& request : browserRequests)
        last = std::max(last, request.endMs);
    for (const Trouble& trouble : troubles)
        last = std::max(last, trouble.atMs);
    return last;
}

int OpenStory::count(AnsweredBy by) const
{
    return static_cast<int>(std::count_if(browserRequests.begin(), browserRequests.end(),
                                          [by](const BrowserRequest& request) { return request.by == by; }));
}

QVector<OpenStory> storiesOf(const Notes& notes)
{
    Collector collector;
    for (const Note& note : notes)
        std::visit(collector, note);
    return collector.finish();
}

} // namespace shell::story
