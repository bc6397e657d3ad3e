#pragma once

#include "vltcloudsvr/ServiceOptions.h"
#include "vltcloudsvr/common/ServicePlace.h"
#include "vltcloudsvr/functions/DocumentFunctions.h"
#include "vltcloudsvr/functions/FunctionRegistry.h"
#include "vltcloudsvr/functions/SerialThread.h"
#include "vltcloudsvr/functions/TransferFunctions.h"
#include "vltcloudsvr/functions/UnzipFunction.h"
#include "vltcloudsvr/plugins/PluginDownloads.h"
#include "vltcloudsvr/server/EventLog.h"
#include "vltcloudsvr/server/SocketServer.h"
#include "vltcloudsvr/transfers/TransferEngine.h"

#include "nrt/FileLock.h"

#include <QObject>
#include <QTimer>

#include <memory>

namespace vlt::cloudsvr {

/** The running service: its parts, and when it has nothing left to do. */
class ServiceProcess final : public QObject
{
    Q_OBJECT
public:
    enum class Start { Done, ServedByAnother, Failed };

    explicit ServiceProcess(const ServiceOptions& options);
    ~ServiceProcess() override;

    /** `error` says what failed. */
    Start start(QString& error);

Q_SIGNALS:
    /** The last client left long enough ago and neither a download nor a transfer is under way. */
    void finished();

private:
    using DocumentFunction = CallResult (DocumentFunctions::*)(const Caller&, const Values&);

    void addFunctions();
    void startTransfers();
    FunctionRegistry::Function onRecordsThread(DocumentFunction function);
    CallResult requestPlugin(const Caller& caller, const Values& arguments);
    void onInstalled(const QString& name, const QString& version, const QString& directory);
    void onClientCountChanged(int count);
    void onIdle();

    const ServiceOptions m_options;
    ServicePlace m_place;
    // Destroyed from the last to the first: nobody calls into a part that is gone.
    std::unique_ptr<nrt::FileLock> m_lock;
    SerialThread m_recordsThread;
    std::unique_ptr<DocumentFunctions> m_documents; //!< lives on the records' thread
    UnzipFunction m_unzip;
    EventLog m_events;
    std::unique_ptr<TransferEngine> m_transfers;
    std::unique_ptr<TransferFunctions> m_transferFunctions;
    FunctionRegistry m_functions;
    FunctionRegistry m_methods;
    std::unique_ptr<PluginDownloads> m_downloads;
    std::unique_ptr<SocketServer> m_server;
    int m_clients = 0;
    QTimer m_idleTimer;
};

} // namespace vlt::cloudsvr
