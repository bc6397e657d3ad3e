#pragma once

#include "shell/story/OpenStory.h"

namespace shell::story {

/** A story that is being collected. Its times are milliseconds since the epoch; `finish` makes them relative.
 */
struct StoryDraft
{
    OpenStory story;
    qint64 firstNoteAt = 0;
    std::optional<double> pageMadeAt; //!< the page's construction
    std::optional<double> loadAt;     //!< when the page was told to load
    std::optional<double> readyAt;
    std::optional<double> loadedAt;
    std::optional<double> proxySwitchedAt; //!< the page took up another version of the front end
    std::optional<double> versionCheckGivenUpAt;
    bool typeKnownAtLoad = true; //!< else the page waits for the version check before it loads

    bool takesRequest(const BrowserNote& request) const;
    void addRequest(const BrowserNote& request);
    void addServerReply(const Event& event);
    void addDecision(const Event& event);
    void addOpenStep(const Event& event);
    void addOpenTime(const Event& event);
    void addTrouble(double at, const QString& text);

    OpenStory finish() const;
};

/** The end of a server request that the event reports, less the time that it took. */
double startOfServerRequest(const Event& event);

/** Fills in who waited for whom, and which reply each local answer carried. */
void findWaits(const StoryDraft& draft, OpenStory& story);

} // namespace shell::story
