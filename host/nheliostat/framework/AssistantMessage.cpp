#include "nheliostat/framework/AssistantMessage.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr int longestShownData = 16 * 1024; // characters

QString shownData(const QJsonObject& data)
{
    QString text = QString::fromUtf8(QJsonDocument(data).toJson(QJsonDocument::Indented)).trimmed();
    if (text.size() > longestShownData) {
        text.truncate(longestShownData);
        text.append(QStringLiteral("\n…"));
    }
    return text;
}

} // namespace

std::optional<AssistantMessage> AssistantMessage::parse(const QString& text, const QString& receiverId,
                                                        const QString& source, const QDateTime& time)
{
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
    const QJsonObject message = document.object();
    const QJsonValue data = message.value(QLatin1String("data"));
    if (message.value(QLatin1String("receiverId")).toString() != receiverId || !data.isObject())
        return std::nullopt;
    return AssistantMessage{source, message.value(QLatin1String("docSource")).toString(),
                            shownData(data.toObject()), time};
}
