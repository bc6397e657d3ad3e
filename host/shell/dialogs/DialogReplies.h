#pragma once

#include <QJsonValue>
#include <QString>

class QDialog;

namespace shell {

/** The kind of a dialog as DialogAnswers names it; empty for a dialog that can only be cancelled. */
QString dialogKind(const QDialog& dialog);

/** What a dialog says, for the log: its title, and the text of a message or an input. */
QString dialogText(const QDialog& dialog);

/**
 * Does in the dialog what the answer says, and accepts it. False, with the dialog possibly still open, when
 * the dialog does not take the answer, and for null. The dialog may be gone afterwards.
 */
bool giveAnswer(QDialog& dialog, const QJsonValue& answer);

} // namespace shell
