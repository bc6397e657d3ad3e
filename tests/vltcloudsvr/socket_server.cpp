#include "support/ProcessMemory.h"
#include "vltcloudsvr/client/ServiceConnection.h"
#include "vltcloudsvr/common/Transport.h"
#include "vltcloudsvr/server/SocketServer.h"

#include <gmock/gmock.h>

#include <QFile>
#include <QTemporaryDir>

#include "CloudService.h"

#include <csignal>
#include <sys/socket.h>
#include <sys/un.h>
#include <thrift/TOutput.h>
#include <unistd.h>

// Frames that no client of ours sends.

namespace {

using namespace vlt::cloudsvr;

class CountingService final : public rpc::CloudServiceNull
{
public:
    void call(rpc::CallResult& result, const rpc::Caller&, const std::string& name,
              const std::map<std::string, std::string>&) override
    {
        result.values["name"] = name;
    }
};

/** One raw connection. */
class RawClient
{
public:
    explicit RawClient(const QString& path)
        : m_socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        QFile::encodeName(path).toStdString().copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(::connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }
    ~RawClient() { ::close(m_socket); }
    RawClient(const RawClient&) = delete;
    RawClient& operator=(const RawClient&) = delete;

    /** False when the service has ended the connection. */
    bool send(const std::string& bytes)
    {
        std::size_t sent = 0;
        while (sent < bytes.size()) {
            const ssize_t got = ::send(m_socket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
            if (got <= 0)
                return false;
            sent += std::size_t(got);
        }
        return true;
    }
    /** Says that nothing more comes, and waits until the service ends the connection too. */
    std::string rest()
    {
        ::shutdown(m_socket, SHUT_WR);
        std::string all;
        char piece[4096];
        for (ssize_t got = 0; (got = ::recv(m_socket, piece, sizeof piece, 0)) > 0;)
            all.append(piece, std::size_t(got));
        return all;
    }

private:
    const int m_socket;
};

std::string number(std::uint32_t value)
{
    return {char(value >> 24), char(value >> 16), char(value >> 8), char(value)};
}

std::string frame(const std::string& content)
{
    return number(std::uint32_t(content.size())) + content;
}

/** The begin of a call of "call": then come the fields of its arguments. */
std::string callBegin(const std::string& name = "call", char type = 1)
{
    return std::string("\x80\x01\x00", 3) + type + number(std::uint32_t(name.size())) + name + number(7);
}

std::string field(char type, char id)
{
    return {type, 0, id};
}

constexpr char typeStruct = 12;
constexpr char typeString = 11;
constexpr char typeMap = 13;
constexpr char typeList = 15;

class SocketServerTest : public testing::Test
{
protected:
    void SetUp() override
    {
        apache::thrift::GlobalOutput.setOutputFunction([](const char*) {});
        ASSERT_EQ(m_server.start(std::make_shared<CountingService>()), QString());
    }

    bool serves() const
    {
        ServiceConnection connection(m_path);
        return connection.open();
    }

    const QTemporaryDir m_directory;
    const QString m_path = m_directory.filePath(QStringLiteral("s"));
    SocketServer m_server{m_path};
};

TEST_F(SocketServerTest, FramesThatAreNoCallsAreRefused)
{
    std::string nested;
    for (int i = 0; i < 20'000; ++i)
        nested += field(typeStruct, 9);
    std::string lists;
    for (int i = 0; i < 20'000; ++i)
        lists += std::string(1, typeList) + number(1);
    const std::pair<const char*, std::string> attacks[] = {
        {"negative size", number(0xFFFFFFFF) + "x"},
        {"largest size", number(0x7FFFFFFF) + "x"},
        {"a byte too large", number(largestFrame + 1) + "x"},
        {"another protocol", "GET / HTTP/1.1\r\nHost: x\r\n\r\n"},
        {"empty frames", std::string(4096, '\0')},
        {"no version", frame(number(4) + "call" + '\1' + number(7))},
        {"other version", frame("\x70\x01" + callBegin().substr(2))},
        {"unknown function", frame(callBegin("nothing") + '\0')},
        {"an answer", frame(callBegin("call", 2) + '\0')},
        {"name without end", frame(std::string("\x80\x01\x00\x01", 4) + number(0x7FFFFFFF) + "call")},
        {"name of negative length", frame(std::string("\x80\x01\x00\x01", 4) + number(0x80000000))},
        {"string without end", frame(callBegin() + field(typeString, 2) + number(largestFrame - 1) + "x")},
        {"map without end",
         frame(callBegin() + field(typeMap, 3) + typeString + typeString + number(0x7FFFFFFF))},
        {"map of nothing", frame(callBegin() + field(typeMap, 9) + '\1' + '\1' + number(0x7FFFFFFF))},
        {"nested structures", frame(callBegin() + nested)},
        {"nested lists", frame(callBegin() + field(typeList, 9) + lists)},
        {"unknown type", frame(callBegin() + field(99, 9))},
        {"cut frame", number(1000) + "x"},
        {"cut number", "\x7F"},
    };
    for (const auto& [name, bytes] : attacks) {
        SCOPED_TRACE(name);
        RawClient client(m_path);
        client.send(bytes);
        EXPECT_LT(client.rest().size(), 4096U);
        EXPECT_TRUE(serves());
    }
}

TEST_F(SocketServerTest, AnnouncedFramesTakeNoMemoryBeforeTheyCome)
{
    const std::size_t before = residentBytes();
    std::vector<std::unique_ptr<RawClient>> clients;
    for (int i = 0; i < 100; ++i) {
        clients.push_back(std::make_unique<RawClient>(m_path));
        EXPECT_TRUE(clients.back()->send(number(largestFrame) + "begun"));
    }
    EXPECT_TRUE(serves());
    EXPECT_LT(residentBytes(), before + std::size_t(largestFrame) * 4);
    // None of them keeps the service from answering or ending.
}

} // namespace
