#include "check.h"

#include "zeolite/bridge/ScriptCall.h"

#include <QString>

// A call is well-formed or says why not; its Base64 says the same as its text.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes = inputBytes(data, size);
    const QString text = QString::fromUtf8(bytes);
    const ScriptCall call = parseScriptCall(text);
    check(call.error.isEmpty() ? !call.id.isEmpty() && !call.name.isEmpty() : call.arguments.isEmpty());
    const ScriptCall encoded = parseScriptCallBase64(QString::fromLatin1(text.toUtf8().toBase64()));
    check(encoded.error == call.error && encoded.id == call.id && encoded.name == call.name);
    parseScriptCallBase64(QString::fromLatin1(bytes));
    return 0;
}
