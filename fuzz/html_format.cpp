#include "check.h"

#include "bridge/clipboard/HtmlFormat.h"

// A document and a cut are parts of what they come from; a fragment that is wrapped comes out again.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes = inputBytes(data, size);
    if (const std::optional<QByteArray> document = htmlformat::document(bytes))
        check(bytes.contains(*document));
    check(bytes.contains(htmlformat::cutOfficeDocument(bytes)));
    const QByteArray wrapped = htmlformat::build(bytes);
    check(htmlformat::document(wrapped) == wrapped.mid(105));
    check(wrapped.mid(141, bytes.size()) == bytes);
    return 0;
}
