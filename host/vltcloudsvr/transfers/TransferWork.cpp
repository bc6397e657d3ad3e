#include "vltcloudsvr/transfers/TransferWork.h"

#include "vltcloudsvr/transfers/TargetDirectory.h"

namespace vlt::cloudsvr {

TransferEnd endOf(const DriveError& error)
{
    TransferEnd end;
    switch (error.kind) {
    case DriveError::Kind::Interrupted:
        end.kind = TransferEnd::Kind::Stopped;
        break;
    case DriveError::Kind::Unreachable:
        end.kind = TransferEnd::Kind::Unreachable;
        break;
    case DriveError::Kind::Refused:
        end.kind = TransferEnd::Kind::Failed;
        break;
    case DriveError::Kind::Server:
    case DriveError::Kind::Garbage:
        end.kind = TransferEnd::Kind::Later;
        break;
    }
    end.code = error.status > 0 ? QString::number(error.status) : error.code;
    end.detail = error.status > 0 ? error.code : QString();
    end.message = error.text;
    return end;
}

TransferEnd endLater(const QString& code, const QString& message)
{
    return {TransferEnd::Kind::Later, code, {}, message, {}, {}, {}, -1};
}

QString partName(const QString& name, const QString& suffix)
{
    constexpr int longestStem = 180; // bytes; the rest is for the suffix
    QString stem = name;
    while (stem.toUtf8().size() > longestStem)
        stem.chop(stem.size() > 1 && stem.at(stem.size() - 1).isLowSurrogate() ? 2 : 1);
    return stem + suffix;
}

void removePart(const Transfer& row, const QString& suffix)
{
    if (row.direction != TransferDirection::Download || row.kind != Transfer::Kind::File ||
        !isDriveName(row.name))
        return;
    const Result<TargetDirectory> directory = TargetDirectory::open(row.root, row.below);
    if (directory)
        directory->remove(partName(row.name, suffix));
}

} // namespace vlt::cloudsvr
