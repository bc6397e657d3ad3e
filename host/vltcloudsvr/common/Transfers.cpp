#include "vltcloudsvr/common/Transfers.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <array>
#include <utility>

namespace vlt::cloudsvr {
namespace {

constexpr std::array<std::pair<TransferState, QLatin1String>, 6> stateTexts = {
    {{TransferState::Queued, QLatin1String("queued")},
     {TransferState::Waiting, QLatin1String("queued")},
     {TransferState::Failed, QLatin1String("failed")},
     {TransferState::Stopped, QLatin1String("stopped")},
     {TransferState::Finished, QLatin1String("finished")},
     {TransferState::Running, QLatin1String("running")}}};

TransferState stateOf(const QString& text)
{
    for (const auto& [state, word] : stateTexts) {
        if (text == word)
            return state;
    }
    return TransferState::Queued;
}

QJsonObject toJson(const TransferRow& row)
{
    return {{QStringLiteral("id"), row.id},          {QStringLiteral("name"), row.name},
            {QStringLiteral("path"), row.path},      {QStringLiteral("size"), row.size},
            {QStringLiteral("done"), row.done},      {QStringLiteral("speed"), row.speed},
            {QStringLiteral("msg"), row.message},    {QStringLiteral("state"), toText(row.state)},
            {QStringLiteral("folder"), row.isFolder}};
}

qint64 number(const QJsonObject& object, const QString& key, qint64 standard)
{
    return qint64(object.value(key).toDouble(double(standard)));
}

TransferRow rowOf(const QJsonObject& object)
{
    TransferRow row;
    row.id = object.value(QStringLiteral("id")).toString();
    row.name = object.value(QStringLiteral("name")).toString();
    row.path = object.value(QStringLiteral("path")).toString();
    row.size = number(object, QStringLiteral("size"), row.size);
    row.done = number(object, QStringLiteral("done"), row.done);
    row.speed = number(object, QStringLiteral("speed"), row.speed);
    row.message = object.value(QStringLiteral("msg")).toString();
    row.state = stateOf(object.value(QStringLiteral("state")).toString());
    row.isFolder = object.value(QStringLiteral("folder")).toBool();
    return row;
}

} // namespace

bool isTransferOrder(const QString& name)
{
    return name == names::folderUpload || name == names::uploadFiles || name == names::downloadDir ||
           name == names::downloadFiles;
}

bool isTransferFunction(const QString& name)
{
    for (const QLatin1String& known :
         {names::folderUpload, names::uploadFiles, names::downloadDir, names::downloadFiles,
          names::uploadStates, names::downloadStates, names::listTransfers, names::cancelTransfers,
          names::retryTransfers, names::clearFinishedTransfers, names::getRoamingMode,
          names::changeRoamingMode}) {
        if (name == known)
            return true;
    }
    return false;
}

QString toText(TransferDirection direction)
{
    return direction == TransferDirection::Upload ? QStringLiteral("upload") : QStringLiteral("download");
}

QString toText(TransferState state)
{
    for (const auto& [known, word] : stateTexts) {
        if (state == known)
            return word;
    }
    return {};
}

Values TransferList::toValues() const
{
    QJsonArray array;
    for (const TransferRow& row : rows)
        array.append(toJson(row));
    return {{QStringLiteral("rows"), QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact))},
            {QStringLiteral("offset"), QString::number(offset)},
            {QStringLiteral("total"), QString::number(total)},
            {QStringLiteral("active"), QString::number(active)},
            {QStringLiteral("failed"), QString::number(failed)},
            {QStringLiteral("finished"), QString::number(finished)},
            {QStringLiteral("size"), QString::number(size)},
            {QStringLiteral("done"), QString::number(done)},
            {QStringLiteral("speed"), QString::number(speed)}};
}

TransferList TransferList::fromValues(const Values& values)
{
    TransferList list;
    for (const QJsonValue& row :
         QJsonDocument::fromJson(values.value(QStringLiteral("rows")).toUtf8()).array())
        list.rows.append(rowOf(row.toObject()));
    list.offset = values.value(QStringLiteral("offset")).toInt();
    list.total = values.value(QStringLiteral("total")).toInt();
    list.active = values.value(QStringLiteral("active")).toInt();
    list.failed = values.value(QStringLiteral("failed")).toInt();
    list.finished = values.value(QStringLiteral("finished")).toInt();
    list.size = values.value(QStringLiteral("size")).toLongLong();
    list.done = values.value(QStringLiteral("done")).toLongLong();
    list.speed = values.value(QStringLiteral("speed")).toLongLong();
    return list;
}

} // namespace vlt::cloudsvr
