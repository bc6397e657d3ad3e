#include "shell/cloud/TransferCollector.h"

#include <QPointer>
#include <QSet>

#include <memory>
#include <utility>

namespace shell {

using namespace vlt::cloudsvr;

namespace {

/** Rows of which two pages share these: what ends meanwhile moves the others up. */
constexpr int overlap = 50;

struct Collection
{
    QPointer<TransferSource> source;
    TransferTest test;
    std::function<void(const QStringList&)> done;
    QSet<QString> ids;
};

void readPage(const std::shared_ptr<Collection>& collection, int offset)
{
    collection->source->list(offset, largestTransferPage,
                             [collection, offset](bool success, const TransferList& list) {
                                 if (!success || !collection->source)
                                     return;
                                 for (const TransferRow& row : list.rows) {
                                     if (collection->test(row))
                                         collection->ids.insert(row.id);
                                 }
                                 const int next = offset + list.rows.size();
                                 if (next >= list.total || list.rows.size() <= overlap)
                                     collection->done(collection->ids.values());
                                 else
                                     readPage(collection, next - overlap);
                             });
}

} // namespace

bool canCancel(const TransferRow& row)
{
    return row.state == TransferState::Running || row.state == TransferState::Queued ||
           row.state == TransferState::Waiting;
}

bool canRetry(const TransferRow& row)
{
    return row.state == TransferState::Failed || row.state == TransferState::Stopped;
}

void collectTransfers(TransferSource& source, TransferTest test,
                      std::function<void(const QStringList& ids)> done)
{
    readPage(std::make_shared<Collection>(Collection{&source, test, std::move(done), {}}), 0);
}

} // namespace shell
