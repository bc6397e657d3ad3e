#pragma once

#include "shell/story/OpenStory.h"

namespace shell::story {

/** What a piece of the picture means; the palette gives it a colour. */
enum class Tone { Shell, Server, Local, Network, Wait, Ready, Trouble };

/** A bar, or a point in time when it has no length. */
struct LaneItem
{
    Tone tone = Tone::Shell;
    QString label;
    QString detail; //!< what a pointer over it tells
    double startMs = 0;
    double endMs = 0;
    bool isPoint = false;
    std::optional<double> waitedUntilMs; //!< the bar stood still from its start to there
};

struct Lane
{
    QString title;
    QVector<LaneItem> items; //!< by their starts
};

/** Whose answer ended a wait. */
struct Arrow
{
    int fromLane = 0;
    int fromItem = 0;
    int toLane = 0;
    int toItem = 0;
    double atMs = 0;
};

/** The picture's content: what is drawn, before anything has a place. */
struct Lanes
{
    QVector<Lane> lanes; //!< lanes with nothing in them are left out, but for those of requests
    QVector<Arrow> arrows;
    double endMs = 1; //!< the end of the time axis
    int leftOut = 0;  //!< requests after it
};

/** Requests that are many are grouped: the page, the fetched replies, failures and the longest keep bars of
 * their own.
 */
Lanes lanesOf(const OpenStory& story);

} // namespace shell::story
