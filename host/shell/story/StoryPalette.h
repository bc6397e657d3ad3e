#pragma once

#include "shell/story/StoryLanes.h"

namespace shell::story {

/** The colours of a picture, as SVG writes them. */
struct Palette
{
    const char* background;
    const char* band; //!< behind every other lane
    const char* text;
    const char* muted;
    const char* grid;
    const char* onBar; //!< text on a bar
    const char* shell;
    const char* server;
    const char* local;
    const char* network;
    const char* wait;
    const char* ready;
    const char* trouble;

    const char* of(Tone tone) const
    {
        switch (tone) {
        case Tone::Shell:
            return shell;
        case Tone::Server:
            return server;
        case Tone::Local:
            return local;
        case Tone::Network:
            return network;
        case Tone::Wait:
            return wait;
        case Tone::Ready:
            return ready;
        case Tone::Trouble:
            break;
        }
        return trouble;
    }
};

constexpr Palette lightPalette{"#ffffff", "#f5f7fa", "#17202b", "#56616d", "#dfe5ec", "#ffffff", "#7458c8",
                               "#2f6fdb", "#178a56", "#c66a12", "#8b97a5", "#0d6b41", "#c93434"};
constexpr Palette darkPalette{"#1b2129", "#222a34", "#e6ebf1", "#a3aebb", "#36404c", "#10151b", "#a890f0",
                              "#6ea3f5", "#4fc48c", "#f0a04b", "#7d8998", "#7fe0b0", "#f27d7d"};

} // namespace shell::story
