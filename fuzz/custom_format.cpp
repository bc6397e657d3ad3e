#include "check.h"

#include "bridge/clipboard/CustomMimeFormat.h"

// What is read and holds no blanks around its texts comes back when it is written and read again.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::optional<QVariantMap> read = custommime::parse(inputBytes(data, size));
    if (!read)
        return 0;
    QVariantMap trimmed;
    for (auto value = read->begin(); value != read->end(); ++value) {
        const QString type = value.key().trimmed();
        const QString text = value->toString().trimmed();
        if (type == value.key() && !type.isEmpty() && !text.isEmpty())
            trimmed.insert(type, text);
    }
    check(custommime::parse(custommime::build(trimmed)) == trimmed);
    return 0;
}
