#include "shell/system/OneInstance.h"

#include "shell/system/FileDescriptor.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace shell {

namespace {

constexpr unsigned long retryMs = 50;
constexpr int waitingConnections = 16;
const QString textMember = QStringLiteral("text");

QString errorText(int number)
{
    return QString::fromLocal8Bit(std::strerror(number));
}

/** The socket of a directory: reached through a descriptor of it, since its path may be too long for an
 * address. */
class SocketPlace
{
public:
    explicit SocketPlace(const QString& directory)
        : m_directory(::open(QFile::encodeName(directory).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC))
    {
        m_address.sun_family = AF_UNIX;
        const QByteArray path = "/proc/self/fd/" + QByteArray::number(m_directory.get()) + "/shell.sock";
        std::memcpy(m_address.sun_path, path.constData(), static_cast<std::size_t>(path.size()) + 1);
    }
    const sockaddr* address() const { return reinterpret_cast<const sockaddr*>(&m_address); }
    static socklen_t size() { return sizeof(sockaddr_un); }
    const char* path() const { return m_address.sun_path; }

private:
    FileDescriptor m_directory;
    sockaddr_un m_address = {};
};

bool waitFor(int descriptor, short events, const QDeadlineTimer& deadline)
{
    pollfd wanted = {descriptor, events, 0};
    int ready = 0;
    do
        ready = ::poll(&wanted, 1, static_cast<int>(deadline.remainingTime()));
    while (ready < 0 && errno == EINTR);
    return ready > 0;
}

bool sendAll(int descriptor, const QByteArray& message, const QDeadlineTimer& deadline)
{
    for (qint64 sent = 0; sent < message.size();) {
        const ssize_t part = ::send(descriptor, message.constData() + sent,
                                    static_cast<std::size_t>(message.size() - sent), MSG_NOSIGNAL);
        if (part > 0)
            sent += part;
        else if (part == 0 || (errno != EAGAIN && errno != EINTR) || !waitFor(descriptor, POLLOUT, deadline))
            return false;
    }
    return true;
}

/** Whether the owner took the message; false when there is none, or it does not answer. */
bool deliver(const QString& dataDir, const QByteArray& message, const QDeadlineTimer& deadline)
{
    const SocketPlace place(dataDir);
    const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (::connect(socket.get(), place.address(), SocketPlace::size()) != 0 ||
        !sendAll(socket.get(), message, deadline) || !waitFor(socket.get(), POLLIN, deadline))
        return false;
    char answer = 0;
    return ::recv(socket.get(), &answer, 1, 0) == 1;
}

} // namespace

QByteArray HandOver::toMessage() const
{
    QJsonObject message;
    if (text)
        message.insert(textMember, *text);
    return QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n';
}

std::optional<HandOver> HandOver::fromMessage(const QByteArray& line)
{
    const QJsonDocument document = QJsonDocument::fromJson(line);
    if (!document.isObject())
        return std::nullopt;
    const QJsonValue text = document.object().value(textMember);
    if (text.isUndefined())
        return HandOver();
    return text.isString() ? std::optional(HandOver{text.toString()}) : std::nullopt;
}

OneInstance::OneInstance(const QString& dataDir)
    : m_dataDir(dataDir)
{
}

Result<OneInstance> OneInstance::take(const QString& dataDir)
{
    OneInstance instance(dataDir);
    const QFileInfo file(instance.lockPath());
    if (!instance.tryLock() && (!file.exists() || !file.isWritable()))
        return Error{QStringLiteral("data directory: cannot lock %1").arg(file.filePath())};
    return instance;
}

bool OneInstance::tryLock()
{
    auto lock = std::make_shared<nrt::FileLock>(lockPath(), 0);
    if (!lock->isLocked())
        return false;
    m_lock = std::move(lock);
    QFile file(lockPath());
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(QByteArray::number(::getpid()));
    return true;
}

QString OneInstance::lockPath() const
{
    return m_dataDir + QStringLiteral("/shell.lock");
}

QString OneInstance::owner() const
{
    constexpr int longestNumber = 20;
    QFile file(lockPath());
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.read(longestNumber)) : QString();
}

Result<bool> OneInstance::handOver(const HandOver& wish, std::chrono::milliseconds limit)
{
    const QByteArray message = wish.toMessage();
    if (message.size() > HandOver::longest)
        return Error{QStringLiteral("the text is too long for the shell that is running")};
    const QDeadlineTimer deadline(limit);
    // One that starts does not listen yet, and one that ends does not listen any more.
    while (!deliver(m_dataDir, message, deadline)) {
        if (tryLock())
            return false;
        if (deadline.hasExpired())
            return Error{
                QStringLiteral(
                    "data directory: %1 is in use by another shell (process %2), which does not answer")
                    .arg(m_dataDir, owner())};
        QThread::msleep(retryMs);
    }
    return true;
}

Result<int> OneInstance::listen() const
{
    const SocketPlace place(m_dataDir);
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    ::unlink(place.path()); // of an owner that was killed
    if (!socket || ::bind(socket.get(), place.address(), SocketPlace::size()) != 0 ||
        ::chmod(place.path(), S_IRUSR | S_IWUSR) != 0 || ::listen(socket.get(), waitingConnections) != 0)
        return Error{QStringLiteral("later starts cannot reach this shell: %1").arg(errorText(errno))};
    return socket.release();
}

} // namespace shell
