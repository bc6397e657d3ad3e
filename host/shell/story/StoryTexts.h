#pragma once

#include "shell/story/OpenStory.h"

namespace shell::story {

// What a story says in plain words.

/** "12 ms", "1.2 s". */
QString durationText(double ms);
/** "287 B", "46 KB", "1.3 MB". */
QString sizeText(qint64 bytes);
/** The name of the document, or of the place that was opened. */
QString documentName(const OpenStory& story);
/** "Budget opened in 401 ms". */
QString titleText(const OpenStory& story);
/** From where the front end and the answers came. */
QString summaryText(const OpenStory& story);

/** What the step means; the step's own name for one that is not known. */
QString stepText(const QString& step);
/** What the add-on asked the server for. */
QString serverRequestText(const QString& name);
QString browserRequestText(const QString& url);

QString refusalText(const QString& step, const QString& error);
QString serverTroubleText(const QString& name, int errorCode);
QString requestTroubleText(const BrowserNote& request);
QString loadErrorText(const QString& message, const QString& code, const QString& url);
QString versionCheckTimeoutText();
QString activationText(const QMap<QString, QString>& fields);

} // namespace shell::story
