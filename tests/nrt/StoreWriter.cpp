// Writes 1, 2, 3, … under one key of a store and prints each number once it is stored; ends only by being
// killed. Arguments: "kcc" or "settings", the data directory.

#include <cstdio>

#include <QString>

#include "nrt/NSettings.h"
#include "nrt/NrtHost.h"
#include "nrt/kcc.h"

int main(int argc, char** argv)
{
    if (argc != 3)
        return 2;
    nrt::host::Setup setup;
    setup.dataDir = QString::fromLocal8Bit(argv[2]);
    nrt::host::configure(setup);

    const bool useKcc = QLatin1String(argv[1]) == QLatin1String("kcc");
    const QString key = QStringLiteral("counter");
    nrt::NCCCommonSettings settings;
    for (int number = 1;; ++number) {
        if (useKcc)
            nrt::kcc::setValue(key, number);
        else
            settings.setValue(key, number);
        std::printf("%d\n", number);
        std::fflush(stdout);
    }
}
