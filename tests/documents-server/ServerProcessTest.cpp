#include <csignal>

#include <gmock/gmock.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include "support/DriveClient.h"
#include "support/HttpClient.h"
#include "support/TemporarySite.h"

namespace documents {
namespace {

class ServerProcess
{
public:
    explicit ServerProcess(const QStringList& arguments)
    {
        m_process.start(QStringLiteral(SERVER_PROGRAM), arguments);
    }
    ~ServerProcess()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    QByteArray readyLine()
    {
        while (!m_process.canReadLine() && m_process.waitForReadyRead(60'000)) {
        }
        return m_process.readLine();
    }
    void end(int signal) { ::kill(static_cast<pid_t>(m_process.processId()), signal); }
    int exitStatus()
    {
        m_process.waitForFinished(60'000);
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }
    std::string errors() { return m_process.readAllStandardError().toStdString(); }
    std::string output() { return m_process.readAllStandardOutput().toStdString(); }

private:
    QProcess m_process;
};

QStringList serveArguments(const TemporarySite& place)
{
    return {QStringLiteral("--documents"),  place.documents(),
            QStringLiteral("--site"),       place.site(),
            QStringLiteral("--http-port"),  QStringLiteral("0"),
            QStringLiteral("--https-port"), QStringLiteral("0"),
            QStringLiteral("--ready-file"), place.path("ready.json")};
}

unsigned short httpPort(const QByteArray& readyLine)
{
    return static_cast<unsigned short>(
        QJsonDocument::fromJson(readyLine).object().value(QLatin1String("http")).toInt());
}

TEST(ServerProcess, saysItsPortsAndEndsOnASignal)
{
    const TemporarySite place;
    for (const int signal : {SIGTERM, SIGINT}) {
        ServerProcess server(serveArguments(place));
        const QByteArray line = server.readyLine();
        ASSERT_NE(httpPort(line), 0) << line.constData() << server.errors();
        EXPECT_EQ(readFile(place.path("ready.json")), line);
        HttpClient client(httpPort(line));
        EXPECT_EQ(client.ask("GET", "/").body(), "home");
        server.end(signal);
        EXPECT_EQ(server.exitStatus(), 0);
    }
}

TEST(ServerProcess, whatItReportedSurvivesAKill)
{
    const TemporarySite place;
    const std::string bytes = std::string(1'500'000, 'a') + std::string(500'000, 'b');
    const DriveClient::Order order{"0", "0", "f", bytes};
    std::string id;
    {
        ServerProcess server(serveArguments(place));
        const auto port = httpPort(server.readyLine());
        HttpClient client(port);
        const Response saved = client.ask("PUT", "/api/v3/office/file/100001/content",
                                          R"({"base_version":1,"content":{"note":"kept"}})");
        ASSERT_EQ(saved.body(), R"({"file_version":2,"result":"ok"})");
        DriveClient drive(client);
        id = drive.startUpload(order).id;
        HttpClient sender(port);
        sender.send("PUT /api/v1/drive/uploads/" + id +
                    "?offset=0 HTTP/1.1\r\nCookie: vlt_sid=anna\r\nContent-Length: 2000000\r\n\r\n" +
                    bytes.substr(0, 1'234'567));
        while (drive.startUpload(order).offset < 1'234'567) {
        }
        server.end(SIGKILL);
        EXPECT_EQ(server.exitStatus(), -1);
    }
    ServerProcess server(serveArguments(place));
    HttpClient client(httpPort(server.readyLine()));
    const std::string opened = client.ask("POST", "/api/v3/office/file/100001/preopen/word", "{}").body();
    EXPECT_THAT(opened, testing::HasSubstr(R"("content":{"note":"kept"})"));
    EXPECT_THAT(opened, testing::HasSubstr(R"("file_version":"2")"));

    DriveClient drive(client);
    const auto upload = drive.startUpload(order);
    EXPECT_EQ(upload.id, id);
    ASSERT_EQ(upload.offset, 1'234'567U);
    drive.upload(id, upload.offset, bytes.substr(upload.offset));
    const std::string file = DriveClient::id(drive.ask("POST", "/uploads/" + id + "/finish"));
    EXPECT_TRUE(drive.ask("GET", "/files/" + file + "/content").body() == bytes);
}

TEST(ServerProcess, commandLine)
{
    ServerProcess wrong({QStringLiteral("--speed"), QStringLiteral("9")});
    EXPECT_EQ(wrong.exitStatus(), 2);
    EXPECT_THAT(wrong.errors(), testing::HasSubstr("speed"));

    ServerProcess help({QStringLiteral("--help")});
    EXPECT_EQ(help.exitStatus(), 0);
    EXPECT_THAT(help.output(), testing::HasSubstr("--rtt-ms"));

    ServerProcess version({QStringLiteral("--version")});
    EXPECT_EQ(version.exitStatus(), 0);
    EXPECT_THAT(version.output(), testing::StartsWith("skyleaf-documents-server "));
}

} // namespace
} // namespace documents
