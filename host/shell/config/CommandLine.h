#pragma once

#include "shell/config/Result.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace shell {

/** What the command line asks for. */
struct CommandLine
{
    enum class Wish { Run, ShowHelp, ShowVersion };

    Wish wish = Wish::Run;
    QString hostFile; //!< empty: none
    QString dataDir;  //!< empty: the user's own
    bool control = false;
    bool headless = false;
    std::optional<QString> text; //!< what the first page is notified with
};

/** Reads the arguments, program name first. The error names the mistake. */
Result<CommandLine> parseCommandLine(const QStringList& arguments);

/** The text of --help. */
QString commandLineHelp();

} // namespace shell
