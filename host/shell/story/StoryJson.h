#pragma once

#include "shell/story/OpenStory.h"

#include <QJsonObject>

namespace shell::story {

/**
 * The whole story as data, times in milliseconds since "beganAt" (milliseconds since the epoch). What is not
 * known is left out. docs/control.md lists the members.
 */
QJsonObject toJson(const OpenStory& story);

} // namespace shell::story
