#include "shell/dialogs/DialogReplies.h"

#include <QAbstractButton>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QJsonArray>
#include <QLineEdit>
#include <QMessageBox>
#include <QMetaEnum>
#include <QPointer>
#include <QSignalBlocker>

namespace shell {

namespace {

QString plainText(QString label)
{
    return label.remove(u'&');
}

bool chooseFiles(QFileDialog& dialog, QStringList paths)
{
    auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    if (paths.isEmpty() || !name)
        return false;
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    for (QString& path : paths)
        path = QDir::cleanPath(dialog.directory().absoluteFilePath(path));
    // Not seen by the dialog, which would select what of it is in its list, and forget the rest.
    const QSignalBlocker unseen(name);
    name->setText(paths.size() == 1 ? paths.constFirst() : u'"' + paths.join(QStringLiteral("\" \"")) + u'"');
    const QPointer<QFileDialog> asked = &dialog;
    QMetaObject::invokeMethod(&dialog, "accept");
    return !asked || asked->result() == QDialog::Accepted;
}

bool isNamed(const QMessageBox& box, QAbstractButton* button, const QString& name)
{
    const auto buttons = QMetaEnum::fromType<QMessageBox::StandardButtons>();
    const QString standard = QString::fromLatin1(buttons.valueToKey(box.standardButton(button)));
    return standard.compare(name, Qt::CaseInsensitive) == 0 ||
           plainText(button->text()).compare(name, Qt::CaseInsensitive) == 0;
}

bool pressButton(QMessageBox& box, const QString& name)
{
    const QList<QAbstractButton*> buttons = box.buttons();
    for (QAbstractButton* button : buttons) {
        if (isNamed(box, button, name)) {
            button->click();
            return true;
        }
    }
    return false;
}

QStringList texts(const QJsonValue& answer)
{
    if (answer.isString())
        return {answer.toString()};
    return answer.toVariant().toStringList();
}

} // namespace

QString dialogKind(const QDialog& dialog)
{
    if (const auto* files = qobject_cast<const QFileDialog*>(&dialog))
        return files->acceptMode() == QFileDialog::AcceptSave ? QStringLiteral("saveFile")
                                                              : QStringLiteral("file");
    if (qobject_cast<const QMessageBox*>(&dialog))
        return QStringLiteral("messageBox");
    if (qobject_cast<const QInputDialog*>(&dialog))
        return QStringLiteral("input");
    return {};
}

QString dialogText(const QDialog& dialog)
{
    QString text = QStringLiteral("\"%1\"").arg(dialog.windowTitle());
    if (const auto* box = qobject_cast<const QMessageBox*>(&dialog))
        text += QStringLiteral(": \"%1\"").arg(box->text());
    else if (const auto* input = qobject_cast<const QInputDialog*>(&dialog))
        text += QStringLiteral(": \"%1\"").arg(input->labelText());
    return text;
}

bool giveAnswer(QDialog& dialog, const QJsonValue& answer)
{
    if (answer.isNull())
        return false;
    if (auto* files = qobject_cast<QFileDialog*>(&dialog))
        return chooseFiles(*files, texts(answer));
    if (auto* box = qobject_cast<QMessageBox*>(&dialog))
        return pressButton(*box, answer.toString());
    if (auto* input = qobject_cast<QInputDialog*>(&dialog)) {
        input->setTextValue(answer.toString());
        input->accept();
        return true;
    }
    return false;
}

} // namespace shell
