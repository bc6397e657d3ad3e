#pragma once

#include <QString>
#include <QStringList>

namespace nheliostat::browser {

/** 256 unguessable bits. */
QString freshSecret();

/**
 * The script that runs first in every main-frame document of a view: it takes the raw channel away from the
 * page, and makes `window.helio` when the document is of one of the origins. It holds the view's secret where
 * no page reaches.
 */
QString scriptObjectText(const QString& viewSecret, const QStringList& origins);
/** The script that starts an evaluation: `code` is the body of an async function. */
QString evaluationText(int id, const QString& code);
/** The script that fetches the outcome of an evaluation: "running", "gone" or the outcome's JSON. */
QString evaluationPollText(int id);
/** The body of the evaluation that asks a document whether it may end. */
QString documentQuestionText();
/** The body of the one that asks a document that is still saving. */
QString documentStateText();
/** The script that tells what the main frame shows. */
QString loadProbeText();

} // namespace nheliostat::browser
