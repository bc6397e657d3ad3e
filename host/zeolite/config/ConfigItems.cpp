#include "zeolite/config/ConfigItems.h"

#include <QJsonDocument>

namespace {

ConfigItemsResult failure(const QString& error)
{
    return {{}, error};
}

bool readNumber(const QString& text, int& number)
{
    bool ok = false;
    number = text.toInt(&ok);
    return ok && number > 0;
}

QString readGroup(int group, const QJsonObject& items, ConfigItems& into)
{
    for (auto entry = items.begin(); entry != items.end(); ++entry) {
        int item = 0;
        if (!readNumber(entry.key(), item))
            return QStringLiteral("\"%1\" in group %2 is no item number").arg(entry.key()).arg(group);
        if (!entry.value().isObject())
            return QStringLiteral("item %1 of group %2 is no object").arg(item).arg(group);
        into.insert({group, item}, entry.value().toObject());
    }
    return {};
}

} // namespace

ConfigItemsResult parseConfigItems(const QByteArray& hostFile)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(hostFile, &parseError);
    if (parseError.error != QJsonParseError::NoError)
        return failure(QStringLiteral("%1 at byte %2").arg(parseError.errorString()).arg(parseError.offset));
    if (!document.isObject())
        return failure(QStringLiteral("the file holds no object"));

    const QJsonValue centre = document.object().value(QLatin1String("configCentre"));
    if (centre.isUndefined())
        return {};
    if (!centre.isObject())
        return failure(QStringLiteral("\"configCentre\" is no object"));

    const QJsonObject groups = centre.toObject();
    ConfigItemsResult result;
    for (auto entry = groups.begin(); entry != groups.end(); ++entry) {
        int group = 0;
        if (!readNumber(entry.key(), group))
            return failure(QStringLiteral("\"%1\" is no group number").arg(entry.key()));
        if (!entry.value().isObject())
            return failure(QStringLiteral("group %1 is no object").arg(group));
        const QString error = readGroup(group, entry.value().toObject(), result.items);
        if (!error.isEmpty())
            return failure(error);
    }
    return result;
}
