#pragma once

#include "vltcloudsvr/common/Calls.h"

#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>

namespace vlt::tava {
class TavaIpcArg;
}

namespace vlt::cloudsvr {

struct ClientSetup
{
    QString program; //!< of the service; empty: there is none, and every call fails
    QString dataDir; //!< whose service is called
    QStringList arguments;
};

/**
 * The service as a program with an event loop sees it. Nothing here blocks: calls are made on threads of the
 * client, and answers and signals come on the client's own thread, each at a turn of the event loop of its
 * own. The service is started by the first call that does not find it, also after it died. A call that was
 * under way then is made again, once, when it may be: when it only asks, when it does nothing the second
 * time, and when it orders transfers, since the service knows an order that it took. Any other fails.
 * Destroying the client drops what is not answered.
 */
class CloudServiceClient final : public QObject
{
    Q_OBJECT
public:
    /** `success` is false when the service could not be asked or did not answer; the result is empty then. */
    using Reply = std::function<void(bool success, const CallResult&)>;

    explicit CloudServiceClient(const ClientSetup& setup, QObject* parent = nullptr);
    ~CloudServiceClient() override;

    void call(const Caller& caller, const QString& function, const Values& arguments, Reply reply);
    void tavaIpcCall(const Caller& caller, const tava::TavaIpcArg& argument, Reply reply);

    /** Whether a service of the data directory runs, whoever started it. Cheap. */
    bool isRunning() const;
    /**
     * Starts the service when it does not run, with the arguments beside those of the set-up. Answers whether
     * that is possible at all, or, when it waits (some seconds at most), whether the service answered.
     */
    bool start(const QStringList& arguments, bool wait);

Q_SIGNALS:
    /** A process was started; a service that ran already raises nothing. */
    void serviceStarted();
    /** The service that was connected is gone; the next call starts another one. */
    void serviceLost();
    void eventHappened(const QString& name, const QMap<QString, QString>& values);

private:
    struct Parts;

    std::unique_ptr<Parts> m_parts; //!< null without a program
};

} // namespace vlt::cloudsvr
