#pragma once

#include "vltcloudsvr/common/Result.h"

#include <QStringList>

namespace vlt::cloudsvr {

/** What the command line asks for. */
struct ServiceOptions
{
    enum class Wish { Run, ShowHelp, ShowVersion };

    Wish wish = Wish::Run;
    QString dataDir;
    QString socketPath; //!< empty: the one that belongs to the data directory
    int idleExitSeconds = 30;
    int downloadSpreadMs = 3000;
    int downloadRetryMs = 1000;
    int transferRetryMs = 1000;
};

/** Reads the arguments, program name first. The error names the mistake. */
Result<ServiceOptions> parseServiceOptions(const QStringList& arguments);

/** The text of --help. */
QString serviceHelp();

} // namespace vlt::cloudsvr
