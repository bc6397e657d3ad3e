#include <csignal>
#include <cstdio>
#include <exception>

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>

#include <QCoreApplication>
#include <QDateTime>
#include <QSaveFile>

#include "DocumentsServer.h"
#include "ServerOptions.h"

namespace {

constexpr int wrongUse = 2;

int complain(const QString& text, int status)
{
    std::fprintf(stderr, "skyleaf-documents-server: %s\n", qPrintable(text));
    return status;
}

void print(const QByteArray& text)
{
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stdout);
    std::fflush(stdout);
}

bool writeReadyFile(const QString& path, const QByteArray& line)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(line) == line.size() && file.commit();
}

int serve(const documents::ServerOptions& options)
{
    std::signal(SIGPIPE, SIG_IGN);
    boost::asio::io_context context(1);
    boost::asio::signal_set signals(context, SIGINT, SIGTERM);
    signals.async_wait([&context](boost::system::error_code, int) { context.stop(); });

    QString errorText;
    const auto server =
        documents::DocumentsServer::start(context, options, &QDateTime::currentMSecsSinceEpoch, &errorText);
    if (!server)
        return complain(errorText, 1);
    if (!options.readyFile.isEmpty() && !writeReadyFile(options.readyFile, server->readyLine()))
        return complain(QStringLiteral("--ready-file: \"%1\" cannot be written.").arg(options.readyFile), 1);
    print(server->readyLine());
    context.run();
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("skyleaf-documents-server"));
    const auto options = documents::parseOptions(QCoreApplication::arguments());
    if (!options)
        return complain(options.error().text, wrongUse);

    switch (options->wish) {
    case documents::ServerOptions::Wish::ShowHelp:
        print(documents::optionsHelp().toUtf8());
        return 0;
    case documents::ServerOptions::Wish::ShowVersion:
        print("skyleaf-documents-server " SKYLEAF_VERSION "\n");
        return 0;
    case documents::ServerOptions::Wish::Serve:
        break;
    }
    try {
        return serve(*options);
    } catch (const std::exception& error) {
        return complain(QString::fromLocal8Bit(error.what()), 1);
    }
}
