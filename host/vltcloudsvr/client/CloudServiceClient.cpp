#include "vltcloudsvr/client/CloudServiceClient.h"

#include "vltcloudsvr/client/CallLane.h"
#include "vltcloudsvr/client/EventWatch.h"
#include "vltcloudsvr/client/ServiceStarter.h"
#include "vltcloudsvr/common/ServicePlace.h"
#include "vltcloudsvr/common/Texts.h"
#include "vltcloudsvr/common/Transfers.h"

#include <QUuid>

#include "CloudService.h"

#include <thrift/TOutput.h>

#include <future>
#include <utility>

namespace vlt::cloudsvr {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds quickTimeout(10'000);
constexpr milliseconds longTimeout(10 * 60'000);
constexpr milliseconds startWait(3500);
constexpr milliseconds quickStart(3000);
constexpr milliseconds patientStart(10'000); // of what must not get lost

/** Whether the service comes to the same when it is asked twice. */
CallLane::Repeat repeatOf(const QString& function, const Values& arguments)
{
    // Without an argument it toggles.
    if (function == names::changeRoamingMode)
        return arguments.value(positionKey(0)).isEmpty() ? CallLane::Repeat::Never : CallLane::Repeat::Once;
    const bool isHarmless = isTransferFunction(function) || function == names::createDOPRootData ||
                            function == names::getDOPFileInfo;
    return isHarmless ? CallLane::Repeat::Once : CallLane::Repeat::Never;
}

Values withRequestId(const QString& function, Values arguments)
{
    if (isTransferOrder(function) && !arguments.contains(requestIdKey))
        arguments.insert(requestIdKey, QUuid::createUuid().toString(QUuid::Id128));
    return arguments;
}

rpc::Caller written(const Caller& caller)
{
    rpc::Caller target;
    target.userId = caller.userId.toStdString();
    target.localDataDir = caller.localDataDir.toStdString();
    target.apiUrl = caller.apiUrl.toStdString();
    target.resolve = toStd(caller.resolve);
    target.cookies = caller.cookies.toStdString();
    return target;
}

template <typename Work>
void post(QObject* context, Work work)
{
    QMetaObject::invokeMethod(context, std::move(work), Qt::QueuedConnection);
}

CallLane::Done replyOn(QObject* context, CloudServiceClient::Reply reply)
{
    return [context, reply = std::move(reply)](bool success, const CallResult& result) {
        post(context, [reply, success, result] { reply(success, result); });
    };
}

} // namespace

/** What long calls keep waiting are long calls; those for transfers keep their order among themselves. */
struct CloudServiceClient::Parts
{
    Parts(CloudServiceClient& owner, const ClientSetup& setup)
        : place(placeOf(setup.dataDir))
        , arguments(setup.arguments)
        , starter(setup.program, place,
                  [&owner] { post(&owner, [&owner] { Q_EMIT owner.serviceStarted(); }); })
        , watch(
              place,
              [&owner](const QString& name, const Values& values) {
                  post(&owner, [&owner, name, values] { Q_EMIT owner.eventHappened(name, values); });
              },
              [&owner] { post(&owner, [&owner] { Q_EMIT owner.serviceLost(); }); })
        , quick(place.socketPath, starter, {quickTimeout, quickStart}, [this] { watch.wake(); })
        , patient(place.socketPath, starter, {longTimeout, quickStart}, [this] { watch.wake(); })
        , transfers(place.socketPath, starter, {longTimeout, patientStart}, [this] { watch.wake(); })
    {
        starter.setArguments(arguments);
    }

    const ServicePlace place;
    const QStringList arguments;
    ServiceStarter starter;
    EventWatch watch;
    CallLane quick;
    CallLane patient;
    CallLane transfers;

    CallLane& laneOf(const QString& function)
    {
        if (isTransferFunction(function))
            return transfers;
        return function == names::unzipDOPFile ? patient : quick;
    }
};

CloudServiceClient::CloudServiceClient(const ClientSetup& setup, QObject* parent)
    : QObject(parent)
{
    if (setup.program.isEmpty() || setup.dataDir.isEmpty())
        return;
    // The library writes every failed attempt to the standard error; the callers are told.
    apache::thrift::GlobalOutput.setOutputFunction([](const char*) {});
    m_parts = std::make_unique<Parts>(*this, setup);
}

CloudServiceClient::~CloudServiceClient() = default;

void CloudServiceClient::call(const Caller& caller, const QString& function, const Values& arguments,
                              Reply reply)
{
    CallLane::Done done = replyOn(this, std::move(reply));
    if (!m_parts) {
        done(false, {});
        return;
    }
    m_parts->laneOf(function).enqueue(
        [caller = written(caller), function = function.toStdString(),
         arguments = toStd(withRequestId(function, arguments))](rpc::CloudServiceClient& service,
                                                                rpc::CallResult& result) {
            service.call(result, caller, function, arguments);
        },
        std::move(done), repeatOf(function, arguments));
}

void CloudServiceClient::tavaIpcCall(const Caller& caller, const tava::TavaIpcArg& argument, Reply reply)
{
    CallLane::Done done = replyOn(this, std::move(reply));
    if (!m_parts) {
        done(false, {});
        return;
    }
    m_parts->quick.enqueue(
        [caller = written(caller), argument](rpc::CloudServiceClient& service, rpc::CallResult& result) {
            service.tavaIpcCall(result, caller, argument);
        },
        std::move(done));
}

bool CloudServiceClient::isRunning() const
{
    return m_parts && isServed(m_parts->place);
}

bool CloudServiceClient::start(const QStringList& arguments, bool wait)
{
    if (!m_parts)
        return false;
    if (!arguments.isEmpty())
        m_parts->starter.setArguments(m_parts->arguments + arguments);
    const auto answered = std::make_shared<std::promise<bool>>();
    std::future<bool> answer = answered->get_future();
    m_parts->quick.enqueue([](rpc::CloudServiceClient& service, rpc::CallResult&) { service.ping(); },
                           [answered](bool success, const CallResult&) { answered->set_value(success); });
    return !wait || (answer.wait_for(startWait) == std::future_status::ready && answer.get());
}

} // namespace vlt::cloudsvr
