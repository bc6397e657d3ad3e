#pragma once

#include <QMap>
#include <QString>

#include <deque>
#include <variant>

namespace shell::story {

// What the shell learns while documents open, in the order in which it learned it. Times are milliseconds
// since the epoch, taken when the note was made.

/** An event of data collection. */
struct Event
{
    QString name;
    QMap<QString, QString> fields;
    qint64 atMs = 0;
};

enum class AnsweredBy { Local, Network, Refused };

/** A request of a page's browser that has come to its end. */
struct BrowserNote
{
    int page = 0; //!< 0: of no page
    QString method;
    QString url;
    AnsweredBy by = AnsweredBy::Network;
    int status = 0; //!< 0: ended without an answer
    qint64 bytes = 0;
    double ms = 0; //!< how long it took; it ended at `atMs`
    qint64 atMs = 0;
};

/** What happened to a page: "created", "titleChanged" (with the title), "loadFinished", "webFileReady" or
 * "closed". */
struct PageNote
{
    int page = 0;
    QString what;
    QString title;
    qint64 atMs = 0;
};

using Note = std::variant<Event, BrowserNote, PageNote>;
using Notes = std::deque<Note>;

} // namespace shell::story
