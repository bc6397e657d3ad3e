#include "shell/story/StoryRecorder.h"

#include "shell/pages/PageDirectory.h"

#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nheliostat/NHelioPage.h"
#include "nheliostat/gateway/RequestGateway.h"
#include "zeolite/collect/DataCollection.h"

#include <QDateTime>

#include <algorithm>

namespace shell {

namespace {

using story::AnsweredBy;

AnsweredBy answeredBy(GatewayRequestRecord::AnsweredBy by)
{
    switch (by) {
    case GatewayRequestRecord::AnsweredBy::Local:
        return AnsweredBy::Local;
    case GatewayRequestRecord::AnsweredBy::Network:
        return AnsweredBy::Network;
    case GatewayRequestRecord::AnsweredBy::Refused:
        break;
    }
    return AnsweredBy::Refused;
}

bool tellsOfOpens(const QString& event)
{
    return event.startsWith(QLatin1String("docs_")) || event == QLatin1String("memory_release_start");
}

} // namespace

StoryRecorder::StoryRecorder(DataCollection& collection, PageDirectory& pages, QObject* parent)
    : QObject(parent)
    , m_collection(collection)
    , m_pages(pages)
{
    m_observer = collection.addObserver([this](const DcEvent& event) {
        if (tellsOfOpens(event.name))
            append(story::Event{event.name, event.fields, event.t});
    });
    connect(&pages, &PageDirectory::happened, this, &StoryRecorder::onPageHappened);
}

StoryRecorder::~StoryRecorder()
{
    m_collection.removeObserver(m_observer);
}

void StoryRecorder::append(story::Note note)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (const auto* event = std::get_if<story::Event>(&note)) {
        const bool isRelease = event->name == QLatin1String("memory_release_start");
        m_releases +=
            isRelease && event->fields.value(QStringLiteral("action")) == QLatin1String("release") ? 1 : 0;
    }
    m_notes.push_back(std::move(note));
    if (m_notes.size() > mostNotes)
        m_notes.pop_front();
    ++m_revision;
}

void StoryRecorder::onRequestFinished(NHelioBrowserWidgetBase* browser, const GatewayRequestRecord& record)
{
    // The first request on a connection is asked for the gateway's credentials; it then comes again.
    constexpr int credentialsQuestion = 407;
    if (record.by == GatewayRequestRecord::AnsweredBy::Refused && record.status == credentialsQuestion)
        return;
    ++(record.by == GatewayRequestRecord::AnsweredBy::Local ? m_localRequests : m_networkRequests);
    append(story::BrowserNote{m_pages.idOfPageAround(browser), QString::fromLatin1(record.method),
                              QString::fromLatin1(record.url.toEncoded()), answeredBy(record.by),
                              record.status, record.bytes, record.ms, QDateTime::currentMSecsSinceEpoch()});
}

void StoryRecorder::onPageHappened(int id, const QString& what)
{
    const NHelioAppPage* page = what == QLatin1String("titleChanged") ? m_pages.find(id) : nullptr;
    append(
        story::PageNote{id, what, page ? page->pageTitle() : QString(), QDateTime::currentMSecsSinceEpoch()});
}

const QVector<story::OpenStory>& StoryRecorder::stories()
{
    story::Notes notes;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_madeOf == m_revision)
            return m_stories;
        m_madeOf = m_revision;
        notes = m_notes;
    }
    m_stories = story::storiesOf(notes);
    return m_stories;
}

const story::OpenStory* StoryRecorder::latestOf(int page)
{
    if (page == 0) // of stories that no page is known of
        return nullptr;
    const QVector<story::OpenStory>& all = stories();
    const auto found = std::find_if(all.rbegin(), all.rend(),
                                    [page](const story::OpenStory& each) { return each.page == page; });
    return found == all.rend() ? nullptr : &*found;
}

StoryRecorder::Counts StoryRecorder::counts() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return {m_localRequests, m_networkRequests, m_releases};
}

} // namespace shell
