#include "check.h"

#include "nrt/KeyValueFile.h"

#include <QCryptographicHash>

// The input as a store's file, and as the content of one whose checksum is right. What is read is written and
// read again as it is.

namespace {

void readAndWrite(const QByteArray& input)
{
    const auto values = nrt::decodeKeyValues(input);
    if (!values)
        return;
    for (const QVariant& value : *values)
        check(nrt::isStorable(value));
    // Odd times become ordinary ones when they are written.
    const auto ordinary = nrt::decodeKeyValues(nrt::encodeKeyValues(*values));
    check(ordinary.has_value());
    const QByteArray file = nrt::encodeKeyValues(*ordinary);
    const auto same = nrt::decodeKeyValues(file);
    check(same && nrt::encodeKeyValues(*same) == file);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray input = inputBytes(data, size);
    readAndWrite(input);
    readAndWrite("NKCC1\n" + QCryptographicHash::hash(input, QCryptographicHash::Sha256) + input);
    return 0;
}
