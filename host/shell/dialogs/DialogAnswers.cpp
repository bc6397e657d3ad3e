#include "shell/dialogs/DialogAnswers.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <utility>

namespace shell {

namespace {

constexpr int mostTimes = 10000;

bool isTextList(const QJsonValue& value)
{
    const QJsonArray array = value.toArray();
    return value.isArray() &&
           std::all_of(array.begin(), array.end(), [](const QJsonValue& each) { return each.isString(); });
}

bool isSignIn(const QJsonValue& value)
{
    return value.isObject() && value.toObject().value(QLatin1String("userId")).isString();
}

/** Empty when the value fits the kind. */
QString wanted(const QString& kind, const QJsonValue& value)
{
    if (kind == QLatin1String("file"))
        return isTextList(value) ? QString() : QStringLiteral("a list of paths");
    if (kind == QLatin1String("login"))
        return isSignIn(value) ? QString() : QStringLiteral("an object with \"userId\"");
    if (kind == QLatin1String("recover"))
        return value.isBool() ? QString() : QStringLiteral("true or false");
    return value.isString() ? QString() : QStringLiteral("a text");
}

} // namespace

QString DialogAnswers::add(const QString& kind, const QJsonValue& value, int times)
{
    static const QStringList kinds{QStringLiteral("file"),   QStringLiteral("saveFile"),
                                   QStringLiteral("input"),  QStringLiteral("messageBox"),
                                   QStringLiteral("login"),  QStringLiteral("print"),
                                   QStringLiteral("recover")};
    if (!kinds.contains(kind))
        return QStringLiteral("no dialog \"%1\"; there are %2").arg(kind, kinds.join(QStringLiteral(", ")));
    if (times < 1 || times > mostTimes)
        return QStringLiteral("\"times\" must be 1 to %1").arg(mostTimes);
    if (!value.isNull()) {
        const QString form = wanted(kind, value);
        if (!form.isEmpty())
            return QStringLiteral("the value for \"%1\" must be %2 or null").arg(kind, form);
    }
    m_waiting[kind].append({value, times});
    if (const auto added = m_listeners.value(kind))
        added();
    return {};
}

void DialogAnswers::setListener(const QString& kind, std::function<void()> added)
{
    m_listeners.insert(kind, std::move(added));
}

std::optional<QJsonValue> DialogAnswers::take(const QString& kind)
{
    QVector<Answer>& waiting = m_waiting[kind];
    if (waiting.isEmpty())
        return std::nullopt;
    const QJsonValue value = waiting.constFirst().value;
    if (--waiting.first().times == 0)
        waiting.removeFirst();
    return value;
}

} // namespace shell
