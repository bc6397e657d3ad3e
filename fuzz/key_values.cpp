#include "check.h"

#include "nrt/KeyValueFile.h"

#include <QCryptographicHash>

// The input as a store's file, and as the content of one whose checksum is right. What is read can
// be written and read again.

namespace {

void readAndWrite(const QByteArray& input)
{
    const auto values = nrt::decodeKeyValues(input);
    if (!values)
        return;
    for (const QVariant& value : *values)
        check(nrt::isStorable(value));
    const auto again = nrt::decodeKeyValues(nrt::encodeKeyValues(*values));
    check(again.has_value());
    check(again->keys() == values->keys());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray input = inputBytes(data, size);
    readAndWrite(input);
    readAndWrite("NKCC1\n" + QCryptographicHash::hash(input, QCryptographicHash::Sha256) + input);
    return 0;
}
