#include "check.h"

#include "nheliostat/framework/QuickAccessEntry.h"

// The input as a list's file and as a command that pins. What is read is written and read again as it is.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray input = inputBytes(data, size);
    QString complaint;
    if (const auto entries = readQuickAccess(input, complaint)) {
        check(entries->size() <= mostQuickAccessEntries);
        check(readQuickAccess(writeQuickAccess(*entries), complaint) == entries);
    } else {
        check(!complaint.isEmpty());
    }
    if (const auto entry = readPinCommand(QString::fromUtf8(input)))
        check(!entry->fileId.isEmpty() && isPinCommand(QString::fromUtf8(input)));
    return 0;
}
