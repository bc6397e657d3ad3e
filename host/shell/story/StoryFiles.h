#pragma once

#include "shell/story/OpenStory.h"

#include <QImage>

namespace shell {

/**
 * Writes a story through a temporary file: as a picture to ".svg" and ".png", as data to ".json". Empty, or
 * the error text: another ending, a file that cannot be written.
 */
QString saveStory(const story::OpenStory& openStory, const QString& file, bool dark);

/** The picture in pixels, each unit of it `scale` of them. */
QImage storyImage(const QByteArray& svg, double scale);

} // namespace shell
