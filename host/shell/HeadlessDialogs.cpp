#include "shell/HeadlessDialogs.h"

#include "zeolite/NxLoggerLite.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>

namespace shell {

HeadlessDialogs::HeadlessDialogs(QObject* parent)
    : QObject(parent)
{
    qApp->installEventFilter(this);
}

bool HeadlessDialogs::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show) {
        if (auto* dialog = qobject_cast<QDialog*>(watched)) {
            NxLoggerLite::writeWarning(QStringLiteral("shell"),
                                       QStringLiteral("dialog cancelled: \"%1\"").arg(dialog->windowTitle()));
            QMetaObject::invokeMethod(dialog, &QDialog::reject, Qt::QueuedConnection);
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace shell
