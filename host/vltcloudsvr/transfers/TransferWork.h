#pragma once

#include "vltcloudsvr/transfers/DriveClient.h"
#include "vltcloudsvr/transfers/RunningTransfers.h"

#include <vector>

namespace vlt::cloudsvr {

/** Where those who work on a row note what the next attempt has to know. False when that is not possible. */
class TransferJournal
{
public:
    virtual ~TransferJournal() = default;
    virtual bool noteSource(qint64 row, qint64 size, qint64 modified, const QString& sha1) = 0;
    virtual bool notePlace(const Transfer& transfer) = 0;
    virtual bool finishListing(const Transfer& folder, const QVector<Transfer>& children) = 0;
};

/** A row that is worked on, and what it is worked on with. */
struct TransferWork
{
    Transfer row;
    HttpLink& link;
    DriveClient& drive;
    TransferJournal& journal;
    TransferProgress& progress;
    std::vector<char>& buffer; //!< not empty
    QString partSuffix;        //!< of the files that are not complete; of this row alone
};

/** Files up to this size go in one request. */
constexpr qint64 largestSmallFile = 256LL * 1024;

// Each blocks until the row's end, or until it is stopped.
TransferEnd uploadFile(TransferWork work);
TransferEnd uploadFolder(TransferWork work);
TransferEnd downloadFile(TransferWork work);
TransferEnd downloadFolder(TransferWork work);

/** The end that an error of the drive means. */
TransferEnd endOf(const DriveError& error);
TransferEnd endLater(const QString& code, const QString& message);

/** The file that a download is written to until it is complete. */
QString partName(const QString& name, const QString& suffix);
/** Removes what a download left; nothing when there is nothing. */
void removePart(const Transfer& row, const QString& suffix);

} // namespace vlt::cloudsvr
