#include "vltcloudsvr/ServiceOptions.h"

#include <QCommandLineParser>

namespace vlt::cloudsvr {
namespace {

/** The one value of an option, if it is given; an empty one, or the option given twice, is a mistake. */
void readText(const QCommandLineParser& parser, const QCommandLineOption& option, QString& target,
              QString& error)
{
    const QStringList values = parser.values(option);
    const QString name = QStringLiteral("--") + option.names().constFirst();
    if (values.size() > 1)
        error = QStringLiteral("Option %1 is given more than once.").arg(name);
    else if (!values.isEmpty() && values.constFirst().isEmpty())
        error = QStringLiteral("Missing value after '%1'.").arg(name);
    else if (!values.isEmpty())
        target = values.constFirst();
}

void readNumber(const QCommandLineParser& parser, const QCommandLineOption& option, int& target,
                QString& error)
{
    constexpr int largest = 1'000'000;
    QString text;
    readText(parser, option, text, error);
    if (text.isEmpty())
        return;
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (isNumber && number >= 0 && number <= largest)
        target = number;
    else
        error = QStringLiteral("Option --%1 needs a number from 0 to %2, not \"%3\".")
                    .arg(option.names().constFirst(), QString::number(largest), text);
}

QCommandLineOption valueOption(const QString& name)
{
    return QCommandLineOption(name, QString(), QStringLiteral("VALUE"));
}

} // namespace

Result<ServiceOptions> parseServiceOptions(const QStringList& arguments)
{
    const QCommandLineOption socket = valueOption(QStringLiteral("socket"));
    const QCommandLineOption dataDir = valueOption(QStringLiteral("data-dir"));
    const QCommandLineOption idleExit = valueOption(QStringLiteral("idle-exit-seconds"));
    const QCommandLineOption spread = valueOption(QStringLiteral("download-spread-ms"));
    const QCommandLineOption retry = valueOption(QStringLiteral("download-retry-ms"));
    const QCommandLineOption transferRetry = valueOption(QStringLiteral("transfer-retry-ms"));
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption version(QStringList{QStringLiteral("v"), QStringLiteral("version")});

    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.addOptions({socket, dataDir, idleExit, spread, retry, transferRetry, help, version});
    if (!parser.parse(arguments))
        return Error{parser.errorText()};

    ServiceOptions options;
    if (parser.isSet(help)) {
        options.wish = ServiceOptions::Wish::ShowHelp;
        return options;
    }
    if (parser.isSet(version)) {
        options.wish = ServiceOptions::Wish::ShowVersion;
        return options;
    }
    QString error;
    readText(parser, dataDir, options.dataDir, error);
    readText(parser, socket, options.socketPath, error);
    readNumber(parser, idleExit, options.idleExitSeconds, error);
    readNumber(parser, spread, options.downloadSpreadMs, error);
    readNumber(parser, retry, options.downloadRetryMs, error);
    readNumber(parser, transferRetry, options.transferRetryMs, error);
    if (error.isEmpty() && !parser.positionalArguments().isEmpty())
        error = QStringLiteral("Unexpected argument \"%1\".").arg(parser.positionalArguments().constFirst());
    if (error.isEmpty() && options.dataDir.isEmpty())
        error = QStringLiteral("Option --data-dir is missing.");
    if (!error.isEmpty())
        return Error{error};
    return options;
}

QString serviceHelp()
{
    return QStringLiteral(
        "Usage: vltcloudsvr --data-dir DIR [options]\n"
        "\n"
        "Keeps the records and packages of local documents for the shells that share a data\n"
        "directory, transfers files, and downloads plug-ins. Shells start it themselves; a second one for "
        "the same\n"
        "directory ends at once.\n"
        "\n"
        "Options:\n"
        "  --data-dir DIR           where records, plug-ins, lock and log lie; made when it is missing\n"
        "  --socket FILE            the local socket, instead of the one in the data directory; shells\n"
        "                           look for it there only\n"
        "  --idle-exit-seconds N    ends itself so long after its last client left (30)\n"
        "  --download-spread-ms N   a download of a plug-in begins up to so much later, at random (3000)\n"
        "  --download-retry-ms N    before a failed download is tried again (1000)\n"
        "  --transfer-retry-ms N    before a failed transfer is tried again the first time (1000)\n"
        "  -h, --help               show this help\n"
        "  -v, --version            show the version\n");
}

} // namespace vlt::cloudsvr
