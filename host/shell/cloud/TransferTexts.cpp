#include "shell/cloud/TransferTexts.h"

#include <QCoreApplication>
#include <QLocale>
#include <QStringList>

#include <algorithm>

namespace shell::transfertexts {

using namespace vlt::cloudsvr;

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("TransferWindow", text);
}

} // namespace

QString size(qint64 bytes)
{
    return bytes < 0 ? QStringLiteral("–") : QLocale().formattedDataSize(bytes, 1);
}

QString speed(qint64 bytesPerSecond)
{
    return bytesPerSecond <= 0 ? QString() : tr("%1/s").arg(size(bytesPerSecond));
}

int percent(const TransferRow& row)
{
    if (row.state == TransferState::Finished)
        return 100;
    if (row.size <= 0)
        return 0;
    const double share = static_cast<double>(row.done) / static_cast<double>(row.size);
    return std::clamp(static_cast<int>(share * 100), 0, 100);
}

QString state(const TransferRow& row, TransferDirection direction)
{
    switch (row.state) {
    case TransferState::Queued:
        return tr("Waiting");
    case TransferState::Waiting:
        return tr("Waiting for its folder");
    case TransferState::Failed:
        return row.message.isEmpty() ? tr("Failed") : tr("Failed: %1").arg(row.message);
    case TransferState::Stopped:
        return tr("Cancelled");
    case TransferState::Finished:
        return tr("Done");
    case TransferState::Running:
        break;
    }
    return direction == TransferDirection::Upload ? tr("Uploading") : tr("Downloading");
}

QString summary(const TransferList& list, TransferDirection direction)
{
    if (list.total == 0)
        return direction == TransferDirection::Upload ? tr("Nothing to upload") : tr("Nothing to download");
    QStringList parts{tr("%1 of %2 done").arg(list.finished).arg(list.total)};
    if (list.size > 0)
        parts.append(tr("%1 of %2").arg(size(list.done), size(list.size)));
    if (list.speed > 0)
        parts.append(speed(list.speed));
    if (list.failed > 0)
        parts.append(tr("%1 failed or cancelled").arg(list.failed));
    return parts.join(QStringLiteral("  ·  "));
}

} // namespace shell::transfertexts
