#include "shell/config/CommandLine.h"

#include <QCommandLineParser>

namespace shell {

namespace {

/** The one value of an option; an empty one, or the option given twice, is a mistake. */
QString takeValue(const QCommandLineParser& parser, const QCommandLineOption& option, QString& error)
{
    const QStringList values = parser.values(option);
    const QString name = QStringLiteral("--") + option.names().constFirst();
    if (values.size() > 1)
        error = QStringLiteral("Option %1 is given more than once.").arg(name);
    else if (!values.isEmpty() && values.constFirst().isEmpty())
        error = QStringLiteral("Missing value after '%1'.").arg(name);
    return values.isEmpty() ? QString() : values.constLast();
}

} // namespace

Result<CommandLine> parseCommandLine(const QStringList& arguments)
{
    const QCommandLineOption host(QStringLiteral("host"), QString(), QStringLiteral("FILE"));
    const QCommandLineOption dataDir(QStringLiteral("data-dir"), QString(), QStringLiteral("DIR"));
    const QCommandLineOption control(QStringLiteral("control"));
    const QCommandLineOption headless(QStringLiteral("headless"));
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption version(QStringList{QStringLiteral("v"), QStringLiteral("version")});

    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.addOptions({host, dataDir, control, headless, help, version});
    if (!parser.parse(arguments))
        return Error{parser.errorText()};

    CommandLine line;
    if (parser.isSet(help)) {
        line.wish = CommandLine::Wish::ShowHelp;
        return line;
    }
    if (parser.isSet(version)) {
        line.wish = CommandLine::Wish::ShowVersion;
        return line;
    }

    QString error;
    line.hostFile = takeValue(parser, host, error);
    line.dataDir = takeValue(parser, dataDir, error);
    line.control = parser.isSet(control);
    line.headless = parser.isSet(headless);
    const QStringList texts = parser.positionalArguments();
    if (texts.size() > 1)
        error = QStringLiteral("More than one TEXT: \"%1\" and \"%2\".").arg(texts.at(0), texts.at(1));
    if (!error.isEmpty())
        return Error{error};
    if (!texts.isEmpty())
        line.text = texts.constFirst();
    return line;
}

QString commandLineHelp()
{
    return QStringLiteral(
        "Usage: skyleaf-shell [options] [TEXT]\n"
        "\n"
        "Shows the documents service. TEXT, a document's address or a command, is what the first\n"
        "page is to show; without it the shell shows the service's start page.\n"
        "\n"
        "Options:\n"
        "  --host FILE     the deployment to run in (JSON); without it a documents server on this\n"
        "                  machine is expected\n"
        "  --data-dir DIR  where settings, caches and logs are kept; made when it is missing\n"
        "  --control       obey JSON-RPC 2.0 on standard input and output, one message a line\n"
        "  --headless      a window of fixed size, no dialogs, no window manager needed\n"
        "  -h, --help      show this help\n"
        "  -v, --version   show the version\n");
}

} // namespace shell
