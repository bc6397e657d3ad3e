#include "nheliostat/framework/WorkAreaRecord.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <optional>
#include <utility>

namespace {

constexpr int version = 1;

QJsonObject toObject(const NHelioWorkAreaRecoverItem& item)
{
    return {{QStringLiteral("id"), item.id},
            {QStringLiteral("pageType"), item.pageType},
            {QStringLiteral("title"), item.title},
            {QStringLiteral("suffix"), item.suffix},
            {QStringLiteral("params"), QJsonObject::fromVariantMap(item.params)}};
}

bool isBlank(const QString& url)
{
    return url.isEmpty() || url.compare(QLatin1String("about:blank"), Qt::CaseInsensitive) == 0;
}

std::optional<NHelioWorkAreaRecoverItem> toItem(const QJsonObject& object)
{
    NHelioWorkAreaRecoverItem item;
    item.id = object.value(QLatin1String("id")).toString();
    item.pageType = object.value(QLatin1String("pageType")).toInt(-1);
    item.title = object.value(QLatin1String("title")).toString();
    item.suffix = object.value(QLatin1String("suffix")).toString();
    item.params = object.value(QLatin1String("params")).toObject().toVariantMap();
    if (item.pageType < 0 || isBlank(item.params.value(QStringLiteral("url")).toString()))
        return std::nullopt;
    return item;
}

WorkAreaRecord::Window toWindow(const QJsonObject& object, int number, QStringList& complaints)
{
    WorkAreaRecord::Window window;
    const int current = object.value(QLatin1String("current")).toInt(-1);
    const QJsonArray items = object.value(QLatin1String("items")).toArray();
    for (int i = 0; i < items.size(); ++i) {
        const auto item = toItem(items.at(i).toObject());
        if (!item) {
            complaints << QStringLiteral("item %1 of window %2 names no page").arg(i).arg(number);
            continue;
        }
        if (i == current)
            window.current = window.items.size();
        window.items.append(*item);
    }
    return window;
}

} // namespace

int WorkAreaRecord::count() const
{
    int sum = 0;
    for (const Window& window : windows)
        sum += window.items.size();
    return sum;
}

QByteArray WorkAreaRecord::toJson() const
{
    QJsonArray all;
    for (const Window& window : windows) {
        QJsonArray items;
        for (const NHelioWorkAreaRecoverItem& item : window.items)
            items.append(toObject(item));
        all.append(
            QJsonObject{{QStringLiteral("current"), window.current}, {QStringLiteral("items"), items}});
    }
    return QJsonDocument(QJsonObject{{QStringLiteral("version"), version}, {QStringLiteral("windows"), all}})
        .toJson(QJsonDocument::Compact);
}

WorkAreaRecord::Reading WorkAreaRecord::fromJson(const QByteArray& text)
{
    Reading reading;
    QJsonParseError error;
    const QJsonObject object = QJsonDocument::fromJson(text, &error).object();
    if (error.error != QJsonParseError::NoError) {
        reading.complaints << QStringLiteral("it is damaged: %1").arg(error.errorString());
        return reading;
    }
    if (object.value(QLatin1String("version")).toInt() != version) {
        reading.complaints << QStringLiteral("it is of another version");
        return reading;
    }
    const QJsonArray windows = object.value(QLatin1String("windows")).toArray();
    for (int i = 0; i < windows.size(); ++i) {
        Window window = toWindow(windows.at(i).toObject(), i, reading.complaints);
        if (!window.items.isEmpty())
            reading.record.windows.append(std::move(window));
    }
    return reading;
}
