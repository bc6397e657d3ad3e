#pragma once

#include "shell/story/OpenStory.h"

#include <QByteArray>

namespace shell::story {

struct PictureOptions
{
    double width = 1200; //!< at least leastPictureWidth is taken
    bool dark = false;
};

constexpr double leastPictureWidth = 640;

/** The story as an SVG document: title, lanes over a time axis, arrows for waits, what went wrong, a legend.
 */
QByteArray toSvg(const OpenStory& story, const PictureOptions& options);

} // namespace shell::story
