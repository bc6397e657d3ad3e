#pragma once

#include <optional>

/**
 * How far one load of one document is. `docs/architecture.md` has the picture.
 *
 * A load begins as Told. It is Shown once the browser was given its URL, or a running front end its document.
 */
enum class LoadState {
    Told,            //!< nothing was given to the browser, and nothing is waited for
    CheckingVersion, //!< held back until the server says which kind of document it is, or the time is up
    Delaying,        //!< held back until an answer names the front version, or the time is up
    Shown,
    Ready,   //!< the web application reported the document
    Resting, //!< the web view is gone; only what is needed to come back is left
    Ended,
};

enum class LoadEvent {
    CheckVersion, //!< the version check was sent
    Delay,        //!< the delay began
    Release,      //!< what held the load back is over
    Show,         //!< the URL goes to the browser, or the document to the running front end
    WebFileReady,
    Rest,
    End,
};

/** The state after an event; none when the event means nothing in that state. */
std::optional<LoadState> nextState(LoadState state, LoadEvent event);
