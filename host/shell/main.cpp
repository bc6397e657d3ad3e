#include "shell/ShellProgram.h"
#include "shell/config/CommandLine.h"
#include "shell/config/DataDirectory.h"
#include "shell/config/HostFile.h"
#include "shell/system/OneInstance.h"
#include "shell/system/StandardStreams.h"

#include <QApplication>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <utility>

namespace {

constexpr int exitMistake = 2; //!< of whoever started the shell
constexpr int exitFailure = 1;

int fail(int status, const QString& message)
{
    std::fprintf(stderr, "skyleaf-shell: %s\n", qPrintable(message));
    return status;
}

QStringList readArguments(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return arguments;
}

/** What can be told before Qt ends the process for want of a display. */
bool hasDisplay()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

int runShell(shell::ShellProgram::Setup setup, char* programName)
{
    // The shell's own arguments are not the toolkit's nor the browser engine's.
    int argc = 1;
    char* argv[] = {programName, nullptr};
    QApplication application(argc, argv);
    QApplication::setApplicationDisplayName(QStringLiteral("Skyleaf"));
    shell::ShellProgram program(std::move(setup));
    const QString error = program.start();
    return error.isEmpty() ? QApplication::exec() : fail(exitFailure, error);
}

} // namespace

int main(int argc, char** argv)
{
    std::setlocale(LC_ALL, "");
    QCoreApplication::setApplicationName(QStringLiteral("skyleaf-shell"));
    QCoreApplication::setApplicationVersion(QStringLiteral(SKYLEAF_VERSION));

    const auto line = shell::parseCommandLine(readArguments(argc, argv));
    if (!line)
        return fail(exitMistake, line.error().text);
    if (line->wish == shell::CommandLine::Wish::ShowHelp) {
        std::fputs(qPrintable(shell::commandLineHelp()), stdout);
        return 0;
    }
    if (line->wish == shell::CommandLine::Wish::ShowVersion) {
        std::puts("skyleaf-shell " SKYLEAF_VERSION);
        return 0;
    }
    const shell::Result<shell::HostFile> host =
        line->hostFile.isEmpty() ? shell::HostFile() : shell::loadHostFile(line->hostFile);
    if (!host)
        return fail(exitMistake, host.error().text);
    const auto dataDir = shell::prepareDataDirectory(line->dataDir);
    if (!dataDir)
        return fail(exitMistake, dataDir.error().text);
    const auto taken = shell::OneInstance::take(*dataDir);
    if (!taken)
        return fail(exitMistake, taken.error().text);
    shell::OneInstance instance = *taken;
    if (!instance.isOwner()) {
        if (line->control)
            return fail(exitMistake,
                        QStringLiteral("data directory: %1 is in use by another shell (process %2)")
                            .arg(*dataDir, instance.owner()));
        const auto handedOver = instance.handOver({line->text});
        if (!handedOver)
            return fail(exitFailure, handedOver.error().text);
        if (*handedOver)
            return 0;
    }
    if (!hasDisplay())
        return fail(exitFailure,
                    QStringLiteral("no display: start the shell in a graphical session or under Xvfb"));

    std::signal(SIGPIPE, SIG_IGN);
    shell::ShellProgram::Setup setup{*line, *host, *dataDir, instance, {}};
    if (line->control) {
        setup.streams = shell::takeStandardStreams();
        if (!setup.streams.input || !setup.streams.output)
            return fail(exitMistake, QStringLiteral("--control needs standard input and output"));
    }
    shell::ShellProgram::prepareProcess(*line);
    return runShell(std::move(setup), argv[0]);
}
