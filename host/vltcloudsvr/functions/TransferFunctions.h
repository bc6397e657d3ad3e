#pragma once

#include "vltcloudsvr/functions/FunctionRegistry.h"
#include "vltcloudsvr/functions/SerialThread.h"
#include "vltcloudsvr/transfers/TransferEngine.h"
#include "vltcloudsvr/transfers/TransferQueries.h"

#include <functional>
#include <memory>

namespace vlt::cloudsvr {

/** The functions of common/Transfers.h, over the engine. Called from any thread. */
class TransferFunctions
{
public:
    /** `engine` outlives it; `file` is its queue. */
    TransferFunctions(TransferEngine& engine, QString file);
    ~TransferFunctions();

    /** They refer to this. */
    void addTo(FunctionRegistry& registry);

private:
    using Function = CallResult (TransferFunctions::*)(const Caller&, qint64 context, const Values&);

    CallResult uploadFolder(const Caller& caller, qint64 context, const Values& arguments);
    CallResult uploadFiles(const Caller& caller, qint64 context, const Values& arguments);
    CallResult downloadFolders(const Caller& caller, qint64 context, const Values& arguments);
    CallResult downloadFiles(const Caller& caller, qint64 context, const Values& arguments);
    CallResult uploadStates(const Caller& caller, qint64 context, const Values& arguments);
    CallResult downloadStates(const Caller& caller, qint64 context, const Values& arguments);
    CallResult list(const Caller& caller, qint64 context, const Values& arguments);
    CallResult cancel(const Caller& caller, qint64 context, const Values& arguments);
    CallResult retry(const Caller& caller, qint64 context, const Values& arguments);
    CallResult clearFinished(const Caller& caller, qint64 context, const Values& arguments);
    CallResult getRoamingMode(const Caller& caller, qint64 context, const Values& arguments);
    CallResult changeRoamingMode(const Caller& caller, qint64 context, const Values& arguments);

    using Add = std::function<Result<QString>(TransferStore&)>;
    /** All that an order adds, or nothing; the answer of the first time when it is repeated. */
    Result<QString> carryOut(qint64 context, const Values& arguments, const Add& add);
    CallResult addAll(qint64 context, const Values& arguments, const QVector<Transfer>& rows);

    template <typename Query>
    auto withQueries(Query query)
    {
        std::optional<decltype(query(std::declval<TransferQueries&>()))> result;
        m_queryThread.run([&] { result = query(*m_queries); });
        return *std::move(result);
    }

    TransferEngine& m_engine;
    SerialThread m_queryThread;
    std::unique_ptr<TransferQueries> m_queries; //!< lives on its thread
};

} // namespace vlt::cloudsvr
