#pragma once

#include <string>
#include <vector>

#include <QString>
#include <QStringList>

#include "http/LinkShaper.h"
#include "store/Result.h"

namespace documents {

struct ServerOptions
{
    QString documentsDirectory;
    QString siteDirectory;
    QString packageDirectory; ///< empty: no packages to download
    int httpPort = 18080;     ///< 0: a free one
    int httpsPort = 18443;
    LinkSettings link;
    QString readyFile;                  ///< empty: none
    QString accessLog;                  ///< empty: none
    std::vector<std::string> hostNames; ///< of the certificate
    QStringList sessions;               ///< the users' that are accepted; empty: any

    enum class Wish { Serve, ShowHelp, ShowVersion };
    Wish wish = Wish::Serve;
};

/** Reads a command line, program name first. An error's text names the option. */
Result<ServerOptions> parseOptions(const QStringList& arguments);

/** The text of "--help". Needs a QCoreApplication. */
QString optionsHelp();

} // namespace documents
