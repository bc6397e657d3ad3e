#pragma once

#include "shell/story/OpenStory.h"

#include <QObject>

#include <atomic>
#include <mutex>

class DataCollection;
class NHelioBrowserWidgetBase;
struct GatewayRequestRecord;

namespace shell {

class PageDirectory;

/**
 * Notes what the stories of opens are made of: events, requests and what happens to pages. It keeps the
 * latest notes only, and makes stories of them when it is asked for some. Made and destroyed on the
 * user-interface thread, while the services live; there is none while data collection is off.
 */
class StoryRecorder final : public QObject
{
    Q_OBJECT
public:
    static constexpr std::size_t mostNotes = 6000;

    /** Since the start. */
    struct Counts
    {
        int localRequests = 0;
        int networkRequests = 0; //!< refused ones included
        int releases = 0;        //!< pages whose memory was given back
    };

    StoryRecorder(DataCollection& collection, PageDirectory& pages, QObject* parent = nullptr);
    ~StoryRecorder() override;

    /** `browser` may be null: a request of no page. */
    void onRequestFinished(NHelioBrowserWidgetBase* browser, const GatewayRequestRecord& record);

    /** Grows with every note. */
    quint64 revision() const { return m_revision; }
    /** Oldest first; made anew when there are new notes. */
    const QVector<story::OpenStory>& stories();
    /** The latest open in the page; null for none. Valid until the next call. */
    const story::OpenStory* latestOf(int page);
    Counts counts() const;

private:
    void append(story::Note note);
    void onPageHappened(int id, const QString& what);

    DataCollection& m_collection;
    PageDirectory& m_pages;
    mutable std::mutex m_mutex; //!< events come from any thread
    story::Notes m_notes;
    int m_releases = 0;
    int m_localRequests = 0;
    int m_networkRequests = 0;
    std::atomic<quint64> m_revision{1};
    quint64 m_madeOf = 0;
    QVector<story::OpenStory> m_stories;
    int m_observer = 0;
};

} // namespace shell
