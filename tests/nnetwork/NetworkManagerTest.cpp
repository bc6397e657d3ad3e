#include "support/ScriptedServer.h"

#include "nnetwork/INetworkManager.h"
#include "nrt/NrtHost.h"
#include "nrt/modules.h"
#include "tls/SelfSignedIdentity.h"
#include "zeolite/ZeoliteHost.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QLibrary>
#include <QNetworkReply>
#include <QSslCertificate>
#include <QSslKey>
#include <QTemporaryDir>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace {

/** What a completion was told, as values. */
struct Outcome
{
    int calls = 0;
    int error = -1;
    int status = -1;
    QByteArray body;
    QVariantMap headers;
    bool asked = false;
    QString url;
    qint64 timeMs = -1;
};

class NetworkManager : public testing::Test
{
protected:
    void SetUp() override
    {
        setup.dataDir = directory.path();
        setup.libraryDir = QStringLiteral(LIBRARY_DIRECTORY);
        nrt::host::configure(setup);
        services.dataDir = directory.path();
        host = std::make_unique<ZeoliteHost>(services);
        manager = make();
        ASSERT_TRUE(manager);
    }

    static std::shared_ptr<INetworkManager> make(const QString& options = {}, const QString& userAgent = {},
                                                 const QString& proxy = {}, const QString& cacheDir = {})
    {
        const auto library = nrt::loadPluginModule(QStringLiteral("nnetwork"));
        const auto create =
            library ? reinterpret_cast<NCreateNetworkManager>(library->resolve("createNetworkManager"))
                    : nullptr;
        std::shared_ptr<INetworkManager> made;
        if (create && create(&made, proxy, userAgent, cacheDir, options) != (made != nullptr))
            ADD_FAILURE() << "the answer and the pointer disagree";
        return made;
    }

    void resolve(const QString& name, const QString& address)
    {
        setup.productConfig.insert(QStringLiteral("resolve/") + name, address);
        nrt::host::configure(setup);
    }

    static INetworkManager::Completion into(Outcome& outcome)
    {
        return [&outcome](INetworkReply* reply) {
            ++outcome.calls;
            outcome.error = reply->errorCode();
            outcome.status = reply->httpStatusCode();
            outcome.body = reply->body();
            outcome.headers = reply->headers();
            outcome.asked = reply->request() != nullptr;
            outcome.url = outcome.asked ? reply->request()->url().toString() : QString();
            outcome.timeMs = reply->networkTimeMs();
        };
    }
    template <typename Condition>
    static void waitUntil(Condition condition)
    {
        while (!condition())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    Outcome get(const QString& url, const QVariantMap& headers = {})
    {
        Outcome outcome;
        manager->get(url, headers, into(outcome));
        EXPECT_EQ(outcome.calls, 0) << "never from within the call";
        waitUntil([&] { return outcome.calls > 0; });
        return outcome;
    }
    Outcome post(const QString& url, const QByteArray& body, const QVariantMap& headers = {})
    {
        Outcome outcome;
        manager->post(url, headers, body, nullptr, into(outcome));
        waitUntil([&] { return outcome.calls > 0; });
        return outcome;
    }

    QTemporaryDir directory;
    nrt::host::Setup setup;
    zeolite::Setup services;
    std::unique_ptr<ZeoliteHost> host;
    std::shared_ptr<INetworkManager> manager;
};

} // namespace

TEST_F(NetworkManager, requestsGoWhereTheHostIsMappedToUnderItsName)
{
    ScriptedServer server([](const ServerRequest&) {
        return httpAnswer("200 OK", "Set-Cookie: a=1\r\nSet-Cookie: b=2; Path=/\r\nX-One: 1\r\n", "text");
    });
    resolve(QStringLiteral("docs.example.test"), QStringLiteral("127.0.0.1:1"));
    resolve(QStringLiteral("docs.example.test:8080"), server.address());
    const QString url = QStringLiteral("http://docs.example.test:8080/a%20b?q=1");
    const Outcome outcome = get(url, {{QStringLiteral("Cookie"), QByteArray("c=3;")},
                                      {QStringLiteral("X-Text"), QStringLiteral("two\r\nEvil: 1")},
                                      {QStringLiteral("Bad Name"), QStringLiteral("x")},
                                      {QStringLiteral("content-length"), QStringLiteral("9")},
                                      {QStringLiteral("host"), QStringLiteral("evil.test")}});
    EXPECT_EQ(outcome.error, 0);
    EXPECT_EQ(outcome.status, 200);
    EXPECT_EQ(outcome.body, QByteArray("text"));
    EXPECT_EQ(outcome.url, QUrl(url).toString());
    EXPECT_GE(outcome.timeMs, 0);
    EXPECT_EQ(outcome.headers.value(QStringLiteral("Set-Cookie")), QStringLiteral("a=1\nb=2; Path=/"));
    EXPECT_EQ(outcome.headers.value(QStringLiteral("X-One")), QStringLiteral("1"));

    const auto headers = server.requests.at(0).headers;
    EXPECT_EQ(server.requests.at(0).target, QByteArray("/a%20b?q=1"));
    EXPECT_EQ(headers.value("host"), QByteArray("docs.example.test:8080"));
    EXPECT_EQ(headers.value("cookie"), QByteArray("c=3;"));
    EXPECT_EQ(headers.value("x-text"), QByteArray("twoEvil: 1"));
    EXPECT_FALSE(headers.contains("content-length"));

    // Another manager shares the connection, and nobody remembers the cookies.
    manager = make(QString(), QStringLiteral("agent/1"));
    EXPECT_EQ(get(url).status, 200);
    EXPECT_EQ(server.connections, 1);
    EXPECT_EQ(server.requests.at(1).headers.value("user-agent"), QByteArray("agent/1"));
    EXPECT_FALSE(server.requests.at(1).headers.contains("cookie"));
}

TEST_F(NetworkManager, theCertificateOfAMappedHostIsNotVerified)
{
    const tls::Identity identity = tls::makeSelfSignedIdentity({"other.example.test"});
    QSslConfiguration configuration;
    configuration.setLocalCertificate(QSslCertificate(QByteArray::fromStdString(identity.certificatePem)));
    configuration.setPrivateKey(QSslKey(QByteArray::fromStdString(identity.privateKeyPem), QSsl::Rsa));
    if (configuration.privateKey().isNull())
        configuration.setPrivateKey(QSslKey(QByteArray::fromStdString(identity.privateKeyPem), QSsl::Ec));
    ScriptedServer server([](const ServerRequest&) { return httpAnswer("200 OK", {}, "secret"); });
    server.useTls(configuration);

    EXPECT_EQ(get(QStringLiteral("https://%1/").arg(server.address())).error,
              QNetworkReply::SslHandshakeFailedError);
    resolve(QStringLiteral("docs.example.test"), server.address());
    const Outcome outcome = get(QStringLiteral("https://docs.example.test/"));
    EXPECT_EQ(outcome.body, QByteArray("secret"));
    ASSERT_FALSE(server.requests.empty());
    EXPECT_EQ(server.requests.at(0).headers.value("host"), QByteArray("docs.example.test"));
}

TEST_F(NetworkManager, redirectsAreFollowedWithinTheOriginOnly)
{
    ScriptedServer server([](const ServerRequest& request) -> QByteArray {
        const QByteArray path = request.target;
        const QByteArray port = request.headers.value("host").mid(request.headers.value("host").indexOf(':'));
        const auto to = [](const QByteArray& status, const QByteArray& location) {
            return httpAnswer(status, "Location: " + location + "\r\n", "moved");
        };
        if (path == "/302")
            return to("302 Found", "end");
        if (path == "/307")
            return to("307 Temporary Redirect", "http://docs.example.test" + port + "/end");
        if (path == "/elsewhere")
            return to("302 Found", "http://other.example.test" + port + "/end");
        if (path == "/port")
            return to("301 Moved Permanently", "http://docs.example.test:1/end");
        if (path == "/scheme")
            return to("302 Found", "https://docs.example.test" + port + "/end");
        if (path == "/broken")
            return to("302 Found", "http://[/");
        if (path.startsWith("/loop"))
            return to("302 Found", path + 'x');
        return httpAnswer("200 OK", {}, request.method + ' ' + request.body);
    });
    resolve(QStringLiteral("docs.example.test"), server.address());
    resolve(QStringLiteral("other.example.test"), server.address());

    const struct
    {
        const char* path;
        int error;
        int status;
        const char* body;
        std::size_t requests;
    } cases[] = {
        {"/302", 0, 200, "GET ", 2},
        {"/307", 0, 200, "POST body", 2},
        {"/elsewhere", QNetworkReply::InsecureRedirectError, 302, "moved", 1},
        {"/port", QNetworkReply::InsecureRedirectError, 301, "moved", 1},
        {"/scheme", QNetworkReply::InsecureRedirectError, 302, "moved", 1},
        {"/broken", QNetworkReply::ProtocolFailure, 302, "moved", 1},
        {"/loop", QNetworkReply::TooManyRedirectsError, 302, "moved", 6},
    };
    for (const auto& entry : cases) {
        server.requests.clear();
        const QString url = QStringLiteral("http://docs.example.test:81") + QLatin1String(entry.path);
        const Outcome outcome = post(url, "body");
        EXPECT_EQ(outcome.error, entry.error) << entry.path;
        EXPECT_EQ(outcome.status, entry.status) << entry.path;
        EXPECT_EQ(outcome.body, QByteArray(entry.body)) << entry.path;
        EXPECT_EQ(outcome.url, url);
        EXPECT_EQ(server.requests.size(), entry.requests) << entry.path;
    }
}

TEST_F(NetworkManager, compressedBodiesArriveAsTheyWereMeant)
{
    const QByteArray text(5000, 't');
    ScriptedServer server([&text](const ServerRequest& request) {
        return httpAnswer("200 OK", "Content-Encoding: deflate\r\nX-Body: " + request.body + "\r\n",
                          qCompress(text).mid(4));
    });
    const Outcome outcome = post(server.url("/"), "{}");
    EXPECT_EQ(outcome.body, text);
    EXPECT_FALSE(outcome.headers.contains(QStringLiteral("Content-Encoding")));
    EXPECT_EQ(outcome.headers.value(QStringLiteral("X-Body")), QStringLiteral("{}"));
    EXPECT_EQ(server.requests.at(0).headers.value("content-type"), QByteArray("application/json"));
    post(server.url("/"), "x", {{QStringLiteral("Content-Type"), QStringLiteral("text/plain")}});
    EXPECT_EQ(server.requests.at(1).headers.value("content-type"), QByteArray("text/plain"));
}

TEST_F(NetworkManager, failuresAreToldWithoutHalfABody)
{
    const QByteArray chunk = "3e8\r\n" + QByteArray(1000, 'c') + "\r\n";
    ScriptedServer server([&chunk](const ServerRequest& request) -> QByteArray {
        if (request.target == "/missing")
            return httpAnswer("404 Not Found", {}, "no such page");
        if (request.target == "/broken")
            return httpAnswer("500 Internal Server Error", {}, "sorry");
        if (request.target == "/cut")
            return "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf" + QByteArray(closingMark);
        if (request.target == "/closed")
            return QByteArray(closingMark);
        if (request.target == "/large")
            return "HTTP/1.1 200 OK\r\nContent-Length: 3001\r\n\r\n";
        if (request.target == "/endless")
            return "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" + chunk.repeated(4);
        if (request.target == "/full")
            return httpAnswer("200 OK", {}, QByteArray(3000, 'f'));
        if (request.target == "/bomb")
            return httpAnswer("200 OK", "Content-Encoding: deflate\r\n",
                              qCompress(QByteArray(300'000, 'b')).mid(4));
        if (request.target == "/stalls")
            return "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf";
        return {};
    });
    manager = make(QStringLiteral("maxBodyBytes=3000; timeoutMs=200"));
    const struct
    {
        const char* path;
        int error;
        int status;
        QByteArray body;
    } cases[] = {
        {"/missing", QNetworkReply::ContentNotFoundError, 404, "no such page"},
        {"/broken", QNetworkReply::InternalServerError, 500, "sorry"},
        {"/cut", QNetworkReply::RemoteHostClosedError, 200, {}},
        {"/closed", QNetworkReply::RemoteHostClosedError, 0, {}},
        {"/large", QNetworkReply::OperationCanceledError, 200, {}},
        {"/endless", QNetworkReply::OperationCanceledError, 200, {}},
        {"/bomb", QNetworkReply::OperationCanceledError, 200, {}},
        {"/full", 0, 200, QByteArray(3000, 'f')},
        {"/stalls", QNetworkReply::TimeoutError, 200, {}},
        {"/silent", QNetworkReply::TimeoutError, 0, {}},
    };
    for (const auto& entry : cases) {
        const Outcome outcome = get(server.url(entry.path));
        EXPECT_EQ(outcome.error, entry.error) << entry.path;
        EXPECT_EQ(outcome.status, entry.status) << entry.path;
        EXPECT_EQ(outcome.body, entry.body) << entry.path;
        EXPECT_TRUE(outcome.asked);
    }
    const QString closedPort = server.url("/");
    server.close();
    EXPECT_EQ(get(closedPort).error, QNetworkReply::ConnectionRefusedError);
    for (const char* url :
         {"", "/path", "http://", "http://:80/", "file:///etc/hostname", "data:,x", "ftp://a/"}) {
        const Outcome outcome = get(QString::fromLatin1(url));
        EXPECT_EQ(outcome.error, QNetworkReply::ProtocolInvalidOperationError) << url;
        EXPECT_FALSE(outcome.asked) << url;
    }
}

TEST_F(NetworkManager, nobodyIsCalledWhoHasGone)
{
    ScriptedServer server([](const ServerRequest& request) {
        return request.target == "/silent" ? QByteArray() : httpAnswer("200 OK", {}, "x");
    });
    Outcome released;
    manager->get(server.url("/silent"), {}, into(released));
    waitUntil([&] { return server.requests.size() == 1; });
    manager->get(QString(), {}, into(released));
    manager.reset();
    waitUntil([&] { return server.disconnections == 1; });
    EXPECT_EQ(released.calls, 0);

    // Released inside a completion: the others end with it.
    manager = make();
    bool called = false;
    manager->get(server.url("/silent"), {}, into(released));
    manager->get(server.url("/"), {}, [&](INetworkReply* reply) {
        manager.reset();
        called = reply->body() == "x";
    });
    waitUntil([&] { return called && server.disconnections == 2; });
    EXPECT_EQ(released.calls, 0);

    manager = make();
    Outcome dropped;
    auto context = std::make_unique<QObject>();
    manager->post(server.url("/"), {}, "x", context.get(), into(dropped));
    context.reset();
    EXPECT_EQ(get(server.url("/")).calls, 1);
    waitUntil([&] { return server.requests.size() == 5; });
    get(server.url("/"));
    EXPECT_EQ(dropped.calls, 0);
}

TEST_F(NetworkManager, bodiesDoNotWaitForTheHeadToBeAcknowledged)
{
    ScriptedServer server([](const ServerRequest&) { return httpAnswer("200 OK", {}, "x"); });
    EXPECT_EQ(get(server.url("/")).status, 200);
    EXPECT_EQ(post(server.url("/"), "body").status, 200);
    EXPECT_EQ(server.connections, 1);
    int connections = 0;
    for (int descriptor = 0; descriptor < 1024; ++descriptor) {
        sockaddr_in peer = {};
        socklen_t size = sizeof peer;
        if (::getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) != 0 ||
            ntohs(peer.sin_port) != server.serverPort())
            continue;
        int on = 0;
        socklen_t onSize = sizeof on;
        EXPECT_EQ(::getsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, &onSize), 0);
        EXPECT_NE(on, 0);
        ++connections;
    }
    EXPECT_EQ(connections, 1);
}

TEST_F(NetworkManager, configurationsThatCannotBeMetAreRefused)
{
    for (const char* options : {"maxBodyBytes", "maxBodyBytes=", "maxBodyBytes=0", "timeoutMs=-1",
                                "timeoutMs=1s", "timeoutMs=99999999999", "other=1"})
        EXPECT_FALSE(make(QString::fromLatin1(options))) << options;
    EXPECT_FALSE(make({}, {}, QStringLiteral("proxy.test:80")));
    EXPECT_FALSE(make({}, {}, {}, QStringLiteral("/tmp")));
    EXPECT_TRUE(make(QStringLiteral("timeoutMs=5;;maxBodyBytes=7;")));
}
