#pragma once

#include "nrt/FileLock.h"
#include "shell/config/Result.h"

#include <QString>

#include <chrono>
#include <memory>
#include <optional>

namespace shell {

/** What a start asks of the shell that runs already. */
struct HandOver
{
    /** Longest message, in bytes. */
    static constexpr int longest = 1024 * 1024;

    std::optional<QString> text; //!< to be shown in a page; none: the shell only comes to the front

    /** One line. */
    QByteArray toMessage() const;
    /** Nothing for a line that is no such message. */
    static std::optional<HandOver> fromMessage(const QByteArray& line);
};

/**
 * The one shell of a data directory holds the lock on the file "shell.lock" there, which the system takes
 * from a process that dies, and listens on the socket "shell.sock".
 */
class OneInstance
{
public:
    /** How long a start waits for the shell that runs already. */
    static constexpr std::chrono::milliseconds answerLimit{10000};

    /** Takes the directory for this process, if nobody has it. An error when that cannot be known. */
    static Result<OneInstance> take(const QString& dataDir);

    bool isOwner() const { return m_lock != nullptr; }
    /** The owner's process id as it wrote it; empty when it did not. */
    QString owner() const;
    /**
     * Hands the wish to the owner and waits until that took it. An owner that ends meanwhile makes this
     * process the owner instead. An error when the owner does not answer in time.
     */
    Result<bool> handOver(const HandOver& wish, std::chrono::milliseconds limit = answerLimit);

    /**
     * A listening socket for the owner, where `handOver` of others arrives; an error when there can be none.
     * Its path may be longer than socket addresses are.
     */
    Result<int> listen() const;

private:
    explicit OneInstance(const QString& dataDir);
    bool tryLock();
    QString lockPath() const;

    QString m_dataDir;
    std::shared_ptr<nrt::FileLock> m_lock;
};

} // namespace shell
