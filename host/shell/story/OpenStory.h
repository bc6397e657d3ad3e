#pragma once

#include "shell/story/StoryNote.h"

#include <QString>
#include <QVector>

#include <optional>

namespace shell::story {

// All times of a story are milliseconds since its beginning; what was made ready before it has negative ones.

/** A named step of the page; a timed one has a duration. */
struct Step
{
    QString name;
    double atMs = 0;
    std::optional<double> durationMs;
};

/** A request that the add-on sent to the documents server by itself. */
struct ServerRequest
{
    QString name;
    QString url;
    double startMs = 0;
    double endMs = 0;
    int errorCode = 0;         //!< of the connection; 0: an answer came
    std::optional<int> status; //!< both are known once the browser was given the reply
    std::optional<qint64> bytes;
};

/** A request of the browser. */
struct BrowserRequest
{
    QString method;
    QString url;
    AnsweredBy by = AnsweredBy::Network;
    int status = 0;
    qint64 bytes = 0;
    double startMs = 0;
    double endMs = 0;
    int reply = -1; //!< the server request whose reply it was given; -1: none
};

/** Something stood still until the answer of a server request was there, or nobody waited for it any longer.
 */
struct Wait
{
    int browserRequest = -1; //!< who waited; -1: the load of the page
    int serverRequest = -1;  //!< for whom; -1: it is not known to have ended
    double fromMs = 0;
    double untilMs = 0;
    bool gaveUp = false;
};

/** An error or a refusal. */
struct Trouble
{
    double atMs = 0;
    QString text;
};

enum class Outcome { UnderWay, Loaded, Ready, Failed };

/** How one document was opened in a page. */
struct OpenStory
{
    QString traceId;
    int page = 0; //!< 0: no request told of which page it is
    QString title;
    QString url;
    QString officeType;
    qint64 beganAt = 0; //!< milliseconds since the epoch

    QVector<Step> steps; //!< in the order in which they were taken
    QVector<ServerRequest> serverRequests;
    QVector<BrowserRequest> browserRequests;
    QVector<Wait> waits;
    QVector<Trouble> troubles; //!< in the order of their times
    std::optional<double> loadAskedMs;
    std::optional<double> readyMs;  //!< the document is visible and takes input
    std::optional<double> loadedMs; //!< the browser has loaded all of the page
    int laterLocal = 0;             //!< requests after the document was there, and those above the bound
    int laterNetwork = 0;
    bool failed = false; //!< the page itself could not be loaded

    Outcome outcome() const;
    /** From the beginning to the document, else to the last thing that is known of it. */
    double totalMs() const;
    /** Requests of the browser that are in the story, by who answered them. */
    int count(AnsweredBy by) const;
};

/** How many requests of the browser a story holds; more are only counted. */
constexpr int mostBrowserRequests = 1000;

/** The stories that the notes tell, oldest first. What the notes do not say is left out. */
QVector<OpenStory> storiesOf(const Notes& notes);

} // namespace shell::story
