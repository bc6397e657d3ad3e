#pragma once

#include <QString>
#include <QStringList>

/** What the arguments of an open name: a document URL and how to open it. */
struct OpenFilesParams
{
    QString foundUrl; //!< the URL with its parameters, as it was given
    QString url;
    QString suffix;
    QString fileId;
    QString fileName;
    QString from;
    bool newPage = false;
    bool downloadProhibited = false;
    bool showToolBar = true;
};

/** The text after "url=" of the first argument part (arguments are split at "&&") that starts with it; else
 * empty. */
QString findUrlArgument(const QStringList& args);

/** Reads a URL followed by parameters ("https://…&fileid=1&version=2"). */
OpenFilesParams parseOpenFilesParams(const QString& foundUrl);

/** The last segment of `text` when it is a positive integer; empty otherwise. */
QString positiveLastSegment(const QString& text);

/** A "$entry(KEY)$" marker in a URL. */
struct EntryMarker
{
    int position = -1; //!< -1: no marker
    int length = 0;
    QString key;
};
EntryMarker findEntryMarker(const QString& url);
