#include "bridge/clipboard/CompactJson.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

constexpr int pieceUnits = 4 * 1024;

/** What Qt writes for a value, between the brackets of a list. */
QString scalarJson(const QJsonValue& value)
{
    const QByteArray list = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(list.constData() + 1, list.size() - 2);
}

void appendText(QString& json, const QString& text)
{
    if (text.size() > pieceUnits)
        json.reserve(json.size() + text.size() + pieceUnits);
    json += QLatin1Char('"');
    for (int from = 0; from < text.size();) {
        int size = std::min(pieceUnits, text.size() - from);
        if (from + size < text.size() && text.at(from + size - 1).isHighSurrogate())
            --size; // the pair stays together
        const QString quoted = scalarJson(text.mid(from, size));
        json += quoted.midRef(1, quoted.size() - 2);
        from += size;
    }
    json += QLatin1Char('"');
}

void appendMap(QString& json, const QVariantMap& map);

void appendValue(QString& json, const QVariant& value)
{
    if (value.userType() == QMetaType::QVariantMap) {
        appendMap(json, value.toMap());
    } else if (value.userType() == QMetaType::QVariantList) {
        const QVariantList list = value.toList();
        json += QLatin1Char('[');
        for (int i = 0; i < list.size(); ++i) {
            if (i > 0)
                json += QLatin1Char(',');
            appendValue(json, list[i]);
        }
        json += QLatin1Char(']');
    } else if (value.userType() == QMetaType::QString) {
        appendText(json, value.toString());
    } else {
        json += scalarJson(QJsonValue::fromVariant(value));
    }
}

void appendMap(QString& json, const QVariantMap& map)
{
    json += QLatin1Char('{');
    for (auto member = map.begin(); member != map.end(); ++member) {
        if (member != map.begin())
            json += QLatin1Char(',');
        appendText(json, member.key());
        json += QLatin1Char(':');
        appendValue(json, member.value());
    }
    json += QLatin1Char('}');
}

} // namespace

QString compactJson(const QVariantMap& map)
{
    QString json;
    appendMap(json, map);
    return json;
}
