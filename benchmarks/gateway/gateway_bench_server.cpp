// Starts the request gateway with one handler that answers from memory, prints one line of JSON that says how
// to reach it, and runs until standard input ends.
//
//   gateway_bench_server --body-file FILE... [--threads N]
//
// The file at position N is the body of http://bench.example.test/N.

#include "gateway/RequestGateway.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr char origin[] = "http://bench.example.test/";

[[noreturn]] void fail(const QString& text)
{
    std::fprintf(stderr, "gateway_bench_server: %s\n", qUtf8Printable(text));
    std::exit(2);
}

QByteArray readFile(const char* path)
{
    QFile file(QFile::decodeName(path));
    if (!file.open(QIODevice::ReadOnly))
        fail(QStringLiteral("cannot read %1: %2").arg(file.fileName(), file.errorString()));
    return file.readAll();
}

/** The answer to each path, made once: a handler hands over shared bytes. */
QVector<QVariantMap> answersFor(const QVector<QByteArray>& bodies)
{
    QVector<QVariantMap> answers;
    for (const QByteArray& body : bodies) {
        const QVariantMap headers = {
            {QStringLiteral("Content-Type"), QByteArrayLiteral("application/octet-stream")},
            {QStringLiteral("x-client-proxy"), QStringLiteral("true")}};
        answers.append({{QStringLiteral("headerMap"), headers}, {QStringLiteral("resourceData"), body}});
    }
    return answers;
}

} // namespace

int main(int argc, char** argv)
{
    GatewayOptions options;
    QVector<QByteArray> bodies;
    for (int i = 1; i < argc; ++i) {
        const QByteArray name = argv[i];
        if (i + 1 == argc)
            fail(QStringLiteral("%1 needs a value").arg(QString::fromLocal8Bit(name)));
        else if (name == "--threads")
            options.threads = QByteArray(argv[++i]).toInt();
        else if (name == "--body-file")
            bodies.append(readFile(argv[++i]));
        else
            fail(QStringLiteral("unknown option %1").arg(QString::fromLocal8Bit(name)));
    }
    if (bodies.isEmpty() || options.threads < 1)
        fail(QStringLiteral("needs at least one --body-file, and a positive number of threads"));

    RequestGateway gateway(options);
    const QByteArray view = gateway.openView();
    const auto handler = [answers = answersFor(bodies)](const IWebViewResourceProviderCallbackPtr& callback) {
        const int index = callback->requestUrl().midRef(int(sizeof origin) - 1).toInt();
        if (index < 0 || index >= answers.size())
            return false;
        callback->complete(answers.at(index));
        return true;
    };
    gateway.addHandlers(view, {{QLatin1String(origin), handler}});

    const QByteArray credentials =
        (gateway.user() + QLatin1Char(':') + gateway.password()).toUtf8().toBase64();
    const QJsonObject access = {{QStringLiteral("port"), gateway.port()},
                                {QStringLiteral("origin"), QLatin1String(origin)},
                                {QStringLiteral("authorization"), QLatin1String("Basic " + credentials)},
                                {QStringLiteral("viewHeader"), QLatin1String(RequestGateway::viewHeader)},
                                {QStringLiteral("view"), QLatin1String(view)}};
    std::puts(QJsonDocument(access).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}
