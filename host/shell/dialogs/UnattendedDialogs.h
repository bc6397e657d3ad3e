#pragma once

#include <QJsonValue>
#include <QObject>

class QDialog;

namespace shell {

class DialogAnswers;

/**
 * Ends every dialog as soon as it shows, since nobody is there to answer it: with the answer that was set for
 * its kind, else as if it were cancelled. Tells the log of each, with the text that it showed.
 */
class UnattendedDialogs final : public QObject
{
    Q_OBJECT
public:
    /** Begins with the construction; there must be a QApplication. `answers` outlives this. */
    explicit UnattendedDialogs(DialogAnswers& answers, QObject* parent = nullptr);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void end(QDialog& dialog);

    DialogAnswers& m_answers;
};

} // namespace shell
