#include "check.h"

#include "nheliostat/framework/WorkAreaRecord.h"

// What is read of a record is written and read again as it is, without a complaint.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const WorkAreaRecord record = WorkAreaRecord::fromJson(inputBytes(data, size)).record;
    const QByteArray text = record.toJson();
    const WorkAreaRecord::Reading again = WorkAreaRecord::fromJson(text);
    check(again.complaints.isEmpty());
    check(again.record.toJson() == text);
    return 0;
}
