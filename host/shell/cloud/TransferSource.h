#pragma once

#include "vltcloudsvr/common/Transfers.h"

#include <QObject>

#include <functional>

namespace shell {

/** The transfers of one direction, and what can be done with them. User-interface thread. */
class TransferSource : public QObject
{
    Q_OBJECT
public:
    using Reply = std::function<void(bool success, const vlt::cloudsvr::TransferList& list)>;

    using QObject::QObject;

    virtual vlt::cloudsvr::TransferDirection direction() const = 0;
    /** Answers at a later turn of the event loop, at most once. At most `largestTransferPage` rows. */
    virtual void list(int offset, int count, Reply reply) = 0;
    virtual void cancel(const QStringList& ids) = 0;
    virtual void retry(const QStringList& ids) = 0;
    virtual void clearFinished() = 0;

Q_SIGNALS:
    void changed();
};

} // namespace shell
