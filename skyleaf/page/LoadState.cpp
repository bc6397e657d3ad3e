#include "page/LoadState.h"

std::optional<LoadState> nextState(LoadState state, LoadEvent event)
{
    const bool isAlive = state != LoadState::Resting && state != LoadState::Ended;
    const bool isHeldBack = state == LoadState::CheckingVersion || state == LoadState::Delaying;
    switch (event) {
    case LoadEvent::CheckVersion:
        return state == LoadState::Told ? std::make_optional(LoadState::CheckingVersion) : std::nullopt;
    case LoadEvent::Delay:
        return state == LoadState::Told ? std::make_optional(LoadState::Delaying) : std::nullopt;
    case LoadEvent::Release:
        return isHeldBack ? std::make_optional(LoadState::Told) : std::nullopt;
    case LoadEvent::Show: // a document that is shown already may be shown anew, from the server
        return isAlive && state != LoadState::CheckingVersion ? std::make_optional(LoadState::Shown)
                                                              : std::nullopt;
    case LoadEvent::WebFileReady:
        return isAlive ? std::make_optional(LoadState::Ready) : std::nullopt;
    case LoadEvent::Rest:
        return isAlive ? std::make_optional(LoadState::Resting) : std::nullopt;
    case LoadEvent::End:
        return LoadState::Ended;
    }
    return std::nullopt;
}
