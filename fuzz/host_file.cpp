#include "check.h"

#include "shell/config/HostFile.h"

// A host file that is taken has few hosts that are answered locally, and an error names its kind.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto host = shell::parseHostFile(inputBytes(data, size), QStringLiteral("/deployment"));
    if (!host) {
        check(host.error().text.startsWith(QLatin1String("host file: ")));
        return 0;
    }
    check(host->interceptedHosts().size() <= shell::HostFile::mostInterceptedHosts);
    check(host->scriptOrigins().size() <= 2);
    return 0;
}
