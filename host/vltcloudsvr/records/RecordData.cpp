#include "vltcloudsvr/records/RecordData.h"

#include <QJsonDocument>
#include <QRegularExpression>
#include <QStringList>

namespace vlt::cloudsvr {
namespace {

constexpr int longestText = 4 * 1024 * 1024;

const QString localIdKey = QStringLiteral("localId");
const QString fileIdKey = QStringLiteral("fileId");
const QStringList timeKeys = {QStringLiteral("createTimeL"), QStringLiteral("accessTimeL"),
                              QStringLiteral("modifyTimeL")};
const QStringList pathKeys = {QStringLiteral("pkgSyncPath"), QStringLiteral("pkgCachePath")};

bool isPackagePath(const QString& path)
{
    return path.startsWith(u'/') && !path.split(u'/').contains(QStringLiteral("..")) &&
           !path.contains(QChar::Null);
}

/** What is wrong with a member's new value; empty when nothing is. */
QString objection(const QString& key, const QJsonValue& before, const QJsonValue& after)
{
    if ((key == localIdKey || key == fileIdKey) && before != after)
        return QStringLiteral("\"%1\" cannot be changed").arg(key);
    if (timeKeys.contains(key) && !after.isDouble())
        return QStringLiteral("\"%1\" must be a time in milliseconds").arg(key);
    if (pathKeys.contains(key) && !isPackagePath(after.toString()))
        return QStringLiteral("\"%1\" must be a path inside the package").arg(key);
    return {};
}

} // namespace

QJsonObject newRecordData(const QString& localId, const QString& fileId, qint64 nowMs)
{
    QJsonObject data{{localIdKey, localId},
                     {fileIdKey, fileId},
                     {pathKeys.at(0), QStringLiteral("/sync")},
                     {pathKeys.at(1), QStringLiteral("/cache")}};
    for (const QString& key : timeKeys)
        data.insert(key, nowMs);
    return data;
}

bool isLocalId(const QString& text)
{
    static const QRegularExpression form(QStringLiteral("\\A[0-9a-f]{32}\\z"));
    return form.match(text).hasMatch();
}

Result<QJsonObject> mergeRecordData(QJsonObject data, const QByteArray& changes)
{
    if (changes.size() > longestText)
        return Error{QStringLiteral("the data is too long")};
    const QJsonDocument document = QJsonDocument::fromJson(changes);
    if (!document.isObject())
        return Error{QStringLiteral("the data is not a JSON object")};
    const QJsonObject members = document.object();
    for (auto member = members.begin(); member != members.end(); ++member) {
        const QString error = objection(member.key(), data.value(member.key()), *member);
        if (!error.isEmpty())
            return Error{error};
        if (member->isNull())
            data.remove(member.key());
        else
            data.insert(member.key(), *member);
    }
    // Small changes must not add up to a record that nobody can read any more.
    if (toText(data).size() > longestText)
        return Error{QStringLiteral("the data is too long")};
    return data;
}

QByteArray toText(const QJsonObject& data)
{
    return QJsonDocument(data).toJson(QJsonDocument::Compact);
}

} // namespace vlt::cloudsvr
