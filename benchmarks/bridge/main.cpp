#include "BridgeBench.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QJsonDocument>
#include <QTextStream>

using nheliostat::browser::BrowserEnvironment;

namespace {

QString table(const QJsonObject& report)
{
    QString text = QStringLiteral(
        "| measurement | bare channel, ms | helio.call, ms | ratio | longest hold bare / helio, ms |\n"
        "|---|---|---|---|---|\n");
    for (const char* name : {"trivial", "reply1MiB", "reply16MiB"}) {
        const QJsonObject row = report[QLatin1String(name)].toObject();
        const auto number = [&row](const char* member) {
            return QString::number(row[QLatin1String(member)].toDouble(), 'f', 3);
        };
        text += QStringLiteral("| %1 | %2 | %3 | %4 | %5 / %6 |\n")
                    .arg(QLatin1String(name), number("bareMs"), number("helioMs"), number("ratio"),
                         number("bareHoldMs"), number("helioHoldMs"));
    }
    const QJsonObject flight = report[QStringLiteral("inFlight")].toObject();
    return text +
           QStringLiteral("\n%1 calls in flight: %2 ms, longest hold of the user-interface thread %3 ms\n")
               .arg(flight[QStringLiteral("calls")].toInt())
               .arg(flight[QStringLiteral("helioMs")].toDouble(), 0, 'f', 1)
               .arg(flight[QStringLiteral("longestHoldMs")].toDouble(), 0, 'f', 1);
}

bool writeReport(const QString& file, const QJsonObject& report)
{
    QFile target(file);
    return target.open(QIODevice::WriteOnly) && target.write(QJsonDocument(report).toJson()) > 0;
}

} // namespace

int main(int argc, char** argv)
{
    BrowserEnvironment::prepareProcess(true);
    QApplication application(argc, argv);
    const QCommandLineOption runs(QStringLiteral("runs"), QStringLiteral("Counted runs."),
                                  QStringLiteral("number"), QStringLiteral("5"));
    const QCommandLineOption json(QStringLiteral("json"), QStringLiteral("Report file."),
                                  QStringLiteral("file"));
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions({runs, json});
    parser.process(application);

    BrowserEnvironment::Setup setup;
    setup.scriptOrigins = QStringList{QStringLiteral("https://docs.skyleaf.test")};
    setup.interceptedHosts = QStringList{QStringLiteral("docs.skyleaf.test")};
    setup.headless = true;
    BrowserEnvironment environment(setup);
    BridgeBench bench(environment, qMax(1, parser.value(runs).toInt()));
    QObject::connect(&bench, &BridgeBench::failed, &application, [](const QString& reason) {
        QTextStream(stderr) << reason << '\n';
        QApplication::exit(1);
    });
    QObject::connect(&bench, &BridgeBench::finished, &application, [&](const QJsonObject& report) {
        QTextStream(stdout) << table(report);
        const bool isWritten = !parser.isSet(json) || writeReport(parser.value(json), report);
        QApplication::exit(isWritten ? 0 : 1);
    });
    bench.start();
    return QApplication::exec();
}
