#include "shell/dialogs/UnattendedDialogs.h"

#include "shell/dialogs/DialogAnswers.h"
#include "shell/dialogs/DialogReplies.h"

#include "zeolite/NxLoggerLite.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPointer>

namespace shell {

namespace {

const QString logTag = QStringLiteral("shell");

QString toText(const QJsonValue& value)
{
    const QByteArray list = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(list.mid(1, list.size() - 2));
}

} // namespace

UnattendedDialogs::UnattendedDialogs(DialogAnswers& answers, QObject* parent)
    : QObject(parent)
    , m_answers(answers)
{
    // A dialog of the desktop could not be answered from here.
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    qApp->installEventFilter(this);
}

bool UnattendedDialogs::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show && watched->isWidgetType()) {
        const QPointer<QDialog> dialog = qobject_cast<QDialog*>(watched);
        // Later: it has to be shown, and its own event loop to run, before it can be ended.
        const auto endIt = [this, dialog] {
            if (dialog && dialog->isVisible())
                end(*dialog);
        };
        if (dialog)
            QMetaObject::invokeMethod(dialog, endIt, Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}

void UnattendedDialogs::end(QDialog& dialog)
{
    const QString kind = dialogKind(dialog);
    const QString what = (kind.isEmpty() ? QStringLiteral("dialog") : kind) + u' ' + dialogText(dialog);
    const auto answer = kind.isEmpty() ? std::nullopt : m_answers.take(kind);
    const QPointer<QDialog> shown = &dialog;
    if (answer && giveAnswer(dialog, *answer)) {
        NxLoggerLite::writeInfo(logTag, QStringLiteral("dialog answered: %1: %2").arg(what, toText(*answer)));
        return;
    }
    QString line = QStringLiteral("dialog cancelled: %1").arg(what);
    if (answer && !answer->isNull())
        line += QStringLiteral(": it does not take %1").arg(toText(*answer));
    NxLoggerLite::writeWarning(logTag, line);
    if (shown)
        shown->reject();
}

} // namespace shell
