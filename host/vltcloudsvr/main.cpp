#include "shell/system/QuitSignals.h"
#include "vltcloudsvr/ServiceProcess.h"
#include "zeolite/NxLoggerLite.h"
#include "zeolite/logging/LogWriter.h"

#include <QCoreApplication>

#include <thrift/TOutput.h>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using vlt::cloudsvr::ServiceOptions;
using vlt::cloudsvr::ServiceProcess;

constexpr int exitMistake = 2; //!< of whoever started the service
constexpr int exitFailure = 1;

const QString logTag = QStringLiteral("vltcloudsvr");

int fail(int status, const QString& message)
{
    std::fprintf(stderr, "vltcloudsvr: %s\n", qPrintable(message));
    return status;
}

int runService(const ServiceOptions& options)
{
    QString error;
    ServiceProcess service(options);
    switch (service.start(error)) {
    case ServiceProcess::Start::ServedByAnother:
        return 0;
    case ServiceProcess::Start::Failed:
        NxLoggerLite::writeError(logTag, error);
        return fail(exitFailure, error);
    case ServiceProcess::Start::Done:
        break;
    }
    const shell::QuitSignals signals;
    QObject::connect(&signals, &shell::QuitSignals::quitRequested, &QCoreApplication::quit);
    QObject::connect(&service, &ServiceProcess::finished, &QCoreApplication::quit);
    NxLoggerLite::writeInfo(logTag, QStringLiteral("started"));
    const int status = QCoreApplication::exec();
    NxLoggerLite::writeInfo(logTag, QStringLiteral("ended"));
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    // Whoever started the service may have left it copies of its own files and connections.
    ::close_range(STDERR_FILENO + 1, ~0U, 0);
    std::setlocale(LC_ALL, "");
    // What the service makes is the user's alone: the socket, the records, the packages.
    ::umask(S_IRWXG | S_IRWXO);
    std::signal(SIGPIPE, SIG_IGN);
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vltcloudsvr"));

    const auto options = vlt::cloudsvr::parseServiceOptions(QCoreApplication::arguments());
    if (!options)
        return fail(exitMistake, options.error().text);
    if (options->wish == ServiceOptions::Wish::ShowHelp) {
        std::fputs(qPrintable(vlt::cloudsvr::serviceHelp()), stdout);
        return 0;
    }
    if (options->wish == ServiceOptions::Wish::ShowVersion) {
        std::puts("vltcloudsvr " SKYLEAF_VERSION);
        return 0;
    }
    LogWriter::global().setFile(vlt::cloudsvr::placeOf(options->dataDir).logPath());
    apache::thrift::GlobalOutput.setOutputFunction(
        [](const char* text) { NxLoggerLite::writeWarning(logTag, QString::fromLocal8Bit(text)); });
    const int status = runService(*options);
    LogWriter::global().setFile({});
    return status;
}
