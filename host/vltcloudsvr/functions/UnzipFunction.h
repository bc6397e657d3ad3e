#pragma once

#include "vltcloudsvr/archive/EntryRules.h"
#include "vltcloudsvr/common/Calls.h"

#include <atomic>

namespace vlt::cloudsvr {

/**
 * {"localId", "isCompress", "isRemoveZip", "source", "destination"}, the flags "true" or "false". Unpacks the
 * zip file `source` into the directory `destination`, merging with what is there, and removes the zip file
 * afterwards when told so; or packs the directory `source` into the zip file `destination`. Both lie in the
 * package of the local id. Any thread; takes its time.
 */
class UnzipFunction
{
public:
    explicit UnzipFunction(ArchiveLimits limits = {})
        : m_limits(limits)
    {
    }

    CallResult operator()(const Caller& caller, const Values& arguments) const;
    /** Ends what is being unpacked. */
    void cancel() { m_isCancelled = true; }

private:
    CallResult unpack(const QString& root, const QString& source, const QString& destination,
                      bool isRemovingZip) const;

    const ArchiveLimits m_limits;
    std::atomic<bool> m_isCancelled{false};
};

} // namespace vlt::cloudsvr
