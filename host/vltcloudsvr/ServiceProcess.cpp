#include "vltcloudsvr/ServiceProcess.h"

#include "vltcloudsvr/common/InstalledPlugins.h"
#include "vltcloudsvr/server/CallHandler.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>

#include <chrono>

namespace vlt::cloudsvr {
namespace {

/** Looking whether the service runs holds its lock for a moment. */
constexpr int lockTimeoutMs = 500;

/** For people who look after the process; nobody else relies on it. */
void writeOwner(const QString& lockPath)
{
    QFile file(lockPath);
    if (file.open(QIODevice::WriteOnly))
        file.write(QByteArray::number(QCoreApplication::applicationPid()) + '\n');
}

} // namespace

ServiceProcess::ServiceProcess(const ServiceOptions& options)
    : m_options(options)
    , m_place(placeOf(options.dataDir))
{
    if (!m_options.socketPath.isEmpty())
        m_place.socketPath = QDir().absoluteFilePath(m_options.socketPath);
    m_idleTimer.setSingleShot(true);
    m_idleTimer.setInterval(std::chrono::seconds(m_options.idleExitSeconds));
    connect(&m_idleTimer, &QTimer::timeout, this, &ServiceProcess::onIdle);
}

ServiceProcess::~ServiceProcess()
{
    m_unzip.cancel();
    m_events.close();
    m_server.reset();
    m_downloads.reset();
    m_transferFunctions.reset();
    m_transfers.reset();
    m_recordsThread.run([this] { m_documents.reset(); });
}

ServiceProcess::Start ServiceProcess::start(QString& error)
{
    if (!QDir(m_place.dataDir).exists()) {
        error = QStringLiteral("cannot make the data directory %1").arg(m_place.dataDir);
        return Start::Failed;
    }
    m_lock = std::make_unique<nrt::FileLock>(m_place.lockPath, lockTimeoutMs);
    if (!m_lock->isLocked()) {
        if (isServed(m_place))
            return Start::ServedByAnother;
        error = QStringLiteral("cannot lock %1").arg(m_place.lockPath);
        return Start::Failed;
    }
    writeOwner(m_place.lockPath);
    error = m_options.socketPath.isEmpty() ? prepareSocketDirectory(m_place) : QString();
    if (!error.isEmpty())
        return Start::Failed;

    DownloadSetup downloads;
    downloads.pluginsDir = m_place.pluginsDir();
    downloads.spreadMs = m_options.downloadSpreadMs;
    downloads.retryMs = m_options.downloadRetryMs;
    m_downloads = std::make_unique<PluginDownloads>(downloads);
    connect(m_downloads.get(), &PluginDownloads::installed, this, &ServiceProcess::onInstalled);
    connect(m_downloads.get(), &PluginDownloads::idle, this, [this] { onClientCountChanged(m_clients); });
    addFunctions();
    startTransfers();

    m_server = std::make_unique<SocketServer>(m_place.socketPath);
    connect(m_server.get(), &SocketServer::clientCountChanged, this, &ServiceProcess::onClientCountChanged,
            Qt::QueuedConnection);
    m_idleTimer.start();
    error = m_server->start(
        std::make_shared<CallHandler>(m_functions, m_methods, m_events,
                                      [this](const Caller& caller) { m_transfers->noticeCaller(caller); }));
    return error.isEmpty() ? Start::Done : Start::Failed;
}

void ServiceProcess::addFunctions()
{
    m_recordsThread.run([this] {
        m_documents =
            std::make_unique<DocumentFunctions>(m_place.recordsPath(), &QDateTime::currentMSecsSinceEpoch);
    });
    m_functions.add(names::createDOPRootData, onRecordsThread(&DocumentFunctions::create));
    m_functions.add(names::getDOPFileInfo, onRecordsThread(&DocumentFunctions::get));
    m_functions.add(names::updateDOPFileInfo, onRecordsThread(&DocumentFunctions::update));
    m_functions.add(names::removeDOPRootData, onRecordsThread(&DocumentFunctions::remove));
    m_functions.add(names::unzipDOPFile, [this](const Caller& caller, const Values& arguments) {
        return m_unzip(caller, arguments);
    });
    m_methods.add(names::downloadPlugin, [this](const Caller& caller, const Values& arguments) {
        return requestPlugin(caller, arguments);
    });
}

void ServiceProcess::startTransfers()
{
    TransferSetup setup;
    setup.file = m_place.transfersPath();
    setup.retryMs = m_options.transferRetryMs;
    setup.clock = &QDateTime::currentMSecsSinceEpoch;
    m_transfers = std::make_unique<TransferEngine>(setup);
    m_transferFunctions = std::make_unique<TransferFunctions>(*m_transfers, setup.file);
    m_transferFunctions->addTo(m_functions);
    connect(m_transfers.get(), &TransferEngine::changed, this, [this](bool isActive) {
        m_events.add(names::transfersChanged,
                     {{QStringLiteral("active"), isActive ? QStringLiteral("1") : QStringLiteral("0")}});
    });
    connect(m_transfers.get(), &TransferEngine::idle, this, [this] { onClientCountChanged(m_clients); });
}

FunctionRegistry::Function ServiceProcess::onRecordsThread(DocumentFunction function)
{
    return [this, function](const Caller& caller, const Values& arguments) {
        CallResult result;
        m_recordsThread.run([&] { result = (m_documents.get()->*function)(caller, arguments); });
        return result;
    };
}

CallResult ServiceProcess::requestPlugin(const Caller& caller, const Values& arguments)
{
    const QString name = arguments.value(QStringLiteral("pluginName"));
    if (!isInstallableName(name))
        return failure(ResultCode::BadArgument, QStringLiteral("\"%1\" is not a plug-in's name").arg(name));
    QMetaObject::invokeMethod(
        m_downloads.get(), [this, caller, name] { m_downloads->request(caller, name); },
        Qt::QueuedConnection);
    return {};
}

void ServiceProcess::onInstalled(const QString& name, const QString& version, const QString& directory)
{
    m_events.add(names::pluginInstalled, {{QStringLiteral("pluginName"), name},
                                          {QStringLiteral("version"), version},
                                          {QStringLiteral("path"), directory}});
}

void ServiceProcess::onClientCountChanged(int count)
{
    m_clients = count;
    if (m_clients > 0)
        m_idleTimer.stop();
    else if (!m_idleTimer.isActive())
        m_idleTimer.start();
}

void ServiceProcess::onIdle()
{
    // What is under way is not given up; its end comes back here.
    if (!m_downloads->isBusy() && !m_transfers->isBusy())
        Q_EMIT finished();
}

} // namespace vlt::cloudsvr
