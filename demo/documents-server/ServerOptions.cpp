#include "ServerOptions.h"

#include <optional>

#include <QCommandLineParser>
#include <QFileInfo>

namespace documents {
namespace {

struct NumberOption
{
    const char* name;
    int largest;
    int* target;
};

void describe(QCommandLineParser& parser)
{
    const ServerOptions defaults;
    const auto add = [&parser](const char* name, const QString& text, const char* value,
                               const QString& standard = {}) {
        parser.addOption({QLatin1String(name), text, QLatin1String(value), standard});
    };
    parser.setApplicationDescription(QStringLiteral("Serves the documents site and its API on 127.0.0.1."));
    parser.addOption({{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Shows this help.")});
    parser.addOption(
        {{QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Shows the version.")});
    add("documents", QStringLiteral("Directory of the documents; made, and filled with a demo when empty."),
        "DIR");
    add("site", QStringLiteral("Directory of the built site."), "DIR");
    add("packages", QStringLiteral("Directory of front-end packages, files named PLUGIN-VERSION.zip."),
        "DIR");
    add("http-port", QStringLiteral("Port for HTTP, 0 for a free one [%1].").arg(defaults.httpPort), "N",
        QString::number(defaults.httpPort));
    add("https-port", QStringLiteral("Port for HTTPS, 0 for a free one [%1].").arg(defaults.httpsPort), "N",
        QString::number(defaults.httpsPort));
    add("ready-file", QStringLiteral("File that gets the ports once the server listens."), "FILE");
    add("rtt-ms", QStringLiteral("Round trip of the line to imitate, in milliseconds [0]."), "N",
        QStringLiteral("0"));
    add("kbps", QStringLiteral("Rate of that line in thousand bits per second, 0 for no limit [0]."), "N",
        QStringLiteral("0"));
    add("access-log", QStringLiteral("File that gets one JSON line for each request."), "FILE");
    add("session",
        QStringLiteral("Key of a user's session; may be repeated. Without it any session is accepted."),
        "KEY");
    add("host-name", QStringLiteral("A further name for the certificate; may be repeated."), "NAME");
}

Error mistake(const QString& text)
{
    return {ErrorCode::Invalid, text};
}

Failure readNumbers(const QCommandLineParser& parser, ServerOptions& options)
{
    const NumberOption numbers[] = {{"http-port", 65535, &options.httpPort},
                                    {"https-port", 65535, &options.httpsPort},
                                    {"rtt-ms", LinkSettings::maxRttMs, &options.link.rttMs},
                                    {"kbps", LinkSettings::maxKbps, &options.link.kbps}};
    for (const NumberOption& number : numbers) {
        const QString text = parser.value(QLatin1String(number.name));
        bool isNumber = false;
        *number.target = text.toInt(&isNumber);
        if (!isNumber || *number.target < 0 || *number.target > number.largest)
            return mistake(QStringLiteral("--%1: \"%2\" is not a whole number from 0 to %3.")
                               .arg(QLatin1String(number.name), text, QString::number(number.largest)));
    }
    return std::nullopt;
}

Failure readNames(const QCommandLineParser& parser, ServerOptions& options)
{
    options.documentsDirectory = parser.value(QStringLiteral("documents"));
    options.siteDirectory = parser.value(QStringLiteral("site"));
    options.packageDirectory = parser.value(QStringLiteral("packages"));
    options.readyFile = parser.value(QStringLiteral("ready-file"));
    options.accessLog = parser.value(QStringLiteral("access-log"));
    options.hostNames = {"localhost", "127.0.0.1", "docs.skyleaf.test"};
    const auto names = parser.values(QStringLiteral("host-name"));
    for (const QString& name : names) {
        const bool usable =
            !name.isEmpty() && !name.contains(u',') && !name.contains(u':') && !name.contains(u' ');
        if (!usable)
            return mistake(QStringLiteral("--host-name: \"%1\" is not a host name.").arg(name));
        options.hostNames.push_back(name.toStdString());
    }
    options.sessions = parser.values(QStringLiteral("session"));
    for (const QString& key : qAsConst(options.sessions)) {
        if (key.isEmpty() || key.contains(u';') || key.contains(u' '))
            return mistake(QStringLiteral("--session: \"%1\" cannot be a cookie's value.").arg(key));
    }
    for (const char* name : {"ready-file", "access-log"}) {
        if (parser.isSet(QLatin1String(name)) && parser.value(QLatin1String(name)).isEmpty())
            return mistake(QStringLiteral("--%1: a file name is missing.").arg(QLatin1String(name)));
    }
    if (options.documentsDirectory.isEmpty())
        return mistake(QStringLiteral("--documents: a directory is missing."));
    if (options.siteDirectory.isEmpty())
        return mistake(QStringLiteral("--site: a directory is missing."));
    if (!QFileInfo(options.siteDirectory).isDir())
        return mistake(QStringLiteral("--site: \"%1\" is not a directory.").arg(options.siteDirectory));
    if (parser.isSet(QStringLiteral("packages")) && !QFileInfo(options.packageDirectory).isDir())
        return mistake(
            QStringLiteral("--packages: \"%1\" is not a directory.").arg(options.packageDirectory));
    return std::nullopt;
}

} // namespace

Result<ServerOptions> parseOptions(const QStringList& arguments)
{
    QCommandLineParser parser;
    describe(parser);
    if (!parser.parse(arguments))
        return mistake(parser.errorText());
    if (!parser.positionalArguments().isEmpty())
        return mistake(
            QStringLiteral("Unexpected argument \"%1\".").arg(parser.positionalArguments().first()));

    ServerOptions options;
    if (parser.isSet(QStringLiteral("help")))
        options.wish = ServerOptions::Wish::ShowHelp;
    else if (parser.isSet(QStringLiteral("version")))
        options.wish = ServerOptions::Wish::ShowVersion;
    if (options.wish != ServerOptions::Wish::Serve)
        return options;
    if (Failure failure = readNumbers(parser, options))
        return *failure;
    if (Failure failure = readNames(parser, options))
        return *failure;
    return options;
}

QString optionsHelp()
{
    QCommandLineParser parser;
    describe(parser);
    return parser.helpText();
}

} // namespace documents
