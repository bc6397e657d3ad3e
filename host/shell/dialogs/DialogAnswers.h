#pragma once

#include <QJsonValue>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>
#include <optional>

namespace shell {

/**
 * What dialogs are answered with that nobody sits before, set beforehand, for each kind of dialog in the
 * order of the calls:
 *
 * | Kind         | Value                                                         | Null: cancelled |
 * | "file"       | paths to open or directories to choose; an empty list cancels | yes             |
 * | "saveFile"   | the path to write, replaced when it exists                    | yes             |
 * | "messageBox" | the button's name ("ok", "yes", …) or its text                | yes             |
 * | "input"      | the text that is typed                                        | yes             |
 * | "login"      | {"userId", "password"}                                        | yes             |
 * | "print"      | the path of the PDF file that is written                      | yes             |
 * | "recover"    | whether documents of a killed shell are opened again          | left for later  |
 */
class DialogAnswers
{
public:
    /** Sets the answer of the next `times` dialogs of the kind. Empty, or what is wrong with it. */
    QString add(const QString& kind, const QJsonValue& value, int times = 1);
    /** The answer of the next dialog of the kind, taken off; nothing when none was set. */
    std::optional<QJsonValue> take(const QString& kind);
    /** `added` is called when an answer of the kind was set, for what stands open until then. */
    void setListener(const QString& kind, std::function<void()> added);

private:
    struct Answer
    {
        QJsonValue value;
        int times;
    };
    QMap<QString, QVector<Answer>> m_waiting;
    QMap<QString, std::function<void()>> m_listeners;
};

} // namespace shell
