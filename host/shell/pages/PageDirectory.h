#pragma once

#include <QObject>
#include <QString>

#include <map>
#include <memory>

class NHelioAppPage;
class QWidget;

namespace shell {

class PageWatch;

/**
 * Numbers the pages of the shell's windows and says what happens to them. Ids are positive and never used
 * again. A page that is taken out of its window keeps its id when it is back in one by the next turn of the
 * event loop; otherwise it counts as closed. User-interface thread.
 */
class PageDirectory final : public QObject
{
    Q_OBJECT
public:
    explicit PageDirectory(QObject* parent = nullptr);
    ~PageDirectory() override;

    /** The page of the id while it stands in a window, else null. */
    NHelioAppPage* find(int id) const;
    /** The id of a page that is not closed; 0 for another. */
    int idOf(const QObject* page) const;
    /** The id of the page that the widget stands in; 0 for none. */
    int idOfPageAround(const QWidget* widget) const;

    /** Notes that the page was asked to load. */
    void markLoadAsked(const NHelioAppPage* page);
    /** Whether the page was asked to load, or was seen to finish one, and was not released since. */
    bool isLoaded(const NHelioAppPage* page) const;

    void onPageAdded(NHelioAppPage* page);
    void onPageRemoved(NHelioAppPage* page);

Q_SIGNALS:
    /** `what`: "created", "titleChanged", "loadFinished", "webFileReady" or "closed". */
    void happened(int id, const QString& what);

private:
    struct Entry
    {
        std::unique_ptr<PageWatch> watch;
        bool inWindow = true;
        bool loadAsked = false;
    };

    Entry* entryOf(const QObject* page);
    void onWatchHappened(int id, const QString& what);
    void onPageDestroyed(QObject* page);
    void close(int id);

    std::map<int, Entry> m_entries;
    int m_lastId = 0;
};

} // namespace shell
