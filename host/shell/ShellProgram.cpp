#include "shell/ShellProgram.h"

#include "shell/CloudServiceLink.h"
#include "shell/UserSession.h"
#include "shell/cloud/CloudWindows.h"
#include "shell/config/GatewaySettings.h"
#include "shell/control/ControlSession.h"
#include "shell/control/StoryMethods.h"
#include "shell/control/TabMethods.h"
#include "shell/dialogs/RecoverOffer.h"
#include "shell/dialogs/UnattendedDialogs.h"
#include "shell/pages/PageDirectory.h"
#include "shell/pages/PageOpener.h"
#include "shell/story/StoryDock.h"
#include "shell/story/StoryRecorder.h"
#include "shell/system/AddOnLibrary.h"
#include "shell/system/HandOverServer.h"
#include "shell/system/OrderlyQuit.h"

#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nheliostat/NHelioPage.h"
#include "nheliostat/browser/BrowserEnvironment.h"
#include "nheliostat/framework/LeaveRequest.h"
#include "nheliostat/framework/ShellApplication.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellMainWindow.h"
#include "nrt/NSettings.h"
#include "nrt/NrtHost.h"
#include "zeolite/NxLoggerLite.h"
#include "zeolite/ZeoliteHost.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QJsonDocument>
#include <QUrl>

#include <algorithm>
#include <exception>
#include <utility>

namespace shell {

namespace {

constexpr QSize windowSize(1280, 800);

QString installRoot()
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/.."));
}

QString libraryDirectory()
{
    return installRoot() + QStringLiteral("/lib");
}

nrt::host::Setup runtimeSetup(const HostFile& host, const QString& dataDir)
{
    nrt::host::Setup setup;
    setup.dataDir = dataDir;
    setup.installRoot = installRoot();
    setup.libraryDir = libraryDirectory();
    setup.productSwitches = host.productSwitches;
    setup.features = host.features;
    setup.settings = host.settings;
    setup.applicationName = host.applicationName;
    setup.applicationVersion = host.applicationVersion;
    setup.channel = host.channel;
    // Native requests connect where the gateway does.
    for (auto entry = host.resolve.begin(); entry != host.resolve.end(); ++entry)
        setup.productConfig.insert(QStringLiteral("resolve/") + entry.key(), entry.value());
    return setup;
}

zeolite::Setup servicesSetup(const HostFile& host, const QString& dataDir)
{
    zeolite::Setup setup;
    setup.dataDir = dataDir;
    setup.collectsData = host.telemetry;
    setup.logFile = dataDir + QStringLiteral("/shell.log");
    setup.hostFile = host.path;
    setup.domains = host.domains;
    setup.mainDomain = host.mainDomain;
    setup.documentsServiceHost = host.documentsServiceHost;
    setup.intranet = host.intranet;
    setup.capabilities = host.capabilities;
    if (!host.debugInfo.isEmpty())
        setup.debugInfo = QString::fromUtf8(QJsonDocument(host.debugInfo).toJson(QJsonDocument::Compact));
    for (auto plugin = host.plugins.begin(); plugin != host.plugins.end(); ++plugin)
        setup.plugins.insert(plugin.key(), {plugin->path, plugin->upgradePath});
    return setup;
}

/** The user with directories of the shell's own where the host file names none. */
HostUser withDirectories(HostUser user, const QString& dataDir)
{
    if (user.localDataDir.isEmpty())
        user.localDataDir = dataDir + QStringLiteral("/packages");
    if (user.cacheRoot.isEmpty())
        user.cacheRoot = dataDir + QStringLiteral("/cache");
    return user;
}

/** Often enough for the time after which the deployment has inactive pages released. */
int discardCheckSeconds()
{
    constexpr int oneHour = 3600;
    constexpr int mostSeconds = 60;
    nrt::NCCCommonSettings settings;
    settings.beginGroup(QStringLiteral("discardPage"));
    bool isNumber = false;
    const int seconds = settings.value(QStringLiteral("inactivatePageDiscardTime"), oneHour).toInt(&isNumber);
    return std::clamp((isNumber && seconds >= 0 ? seconds : oneHour) / 4, 1, mostSeconds);
}

/** What keeps words that the server has not got: on for the kinds that have an editor, unless the deployment
 * says otherwise. */
void switchOfflineEditingOn(ConfigCentre& centre, const HostFile& host)
{
    constexpr int addOnGroup = 60;
    constexpr int offlineEditing = 60708;
    if (host.configCentre.value(QString::number(addOnGroup)).contains(QString::number(offlineEditing)))
        return;
    centre.set(addOnGroup, offlineEditing,
               {{QStringLiteral("DOPOfflineEditMasterSwitch"), true},
                {QStringLiteral("wordDOPSwitch"), true},
                {QStringLiteral("vsDOPSwitch"), true}});
}

} // namespace

void ShellProgram::prepareProcess(const CommandLine& line)
{
    nheliostat::browser::BrowserEnvironment::prepareProcess(line.headless);
}

ShellProgram::ShellProgram(Setup setup)
    : m_setup(std::move(setup))
{
    m_setup.host.user = withDirectories(m_setup.host.user, m_setup.dataDir);
}

ShellProgram::~ShellProgram() = default;

QString ShellProgram::start()
{
    startServices();
    const QString browserError = startBrowser();
    if (!browserError.isEmpty())
        return browserError;
    startWindows();
    const QString addOnError = loadAddOn();
    if (!addOnError.isEmpty())
        return addOnError;
    openFirstWindow();
    listenToLaterStarts();
    return {};
}

void ShellProgram::startServices()
{
    nrt::host::configure(runtimeSetup(m_setup.host, m_setup.dataDir));
    m_services = std::make_unique<ZeoliteHost>(servicesSetup(m_setup.host, m_setup.dataDir));
    switchOfflineEditingOn(m_services->configCentre(), m_setup.host);
    m_pages = std::make_unique<PageDirectory>();
    if (m_setup.host.telemetry)
        m_stories = std::make_unique<StoryRecorder>(m_services->dataCollection(), *m_pages);
    if (m_setup.line.headless || m_setup.line.control)
        m_unattendedDialogs = std::make_unique<UnattendedDialogs>(m_dialogAnswers);
    if (m_setup.line.control)
        m_control = std::make_unique<ControlSession>(std::move(m_setup.streams), *m_services, *m_pages);
}

QString ShellProgram::startBrowser()
{
    using nheliostat::browser::BrowserEnvironment;
    BrowserEnvironment::Setup setup;
    setup.scriptOrigins = m_setup.host.scriptOrigins();
    setup.interceptedHosts = m_setup.host.interceptedHosts();
    if (setup.interceptedHosts.size() == HostFile::mostInterceptedHosts)
        NxLoggerLite::writeWarning(QStringLiteral("shell"),
                                   QStringLiteral("host file: only %1 hosts are answered locally")
                                       .arg(HostFile::mostInterceptedHosts));
    setup.resolve = m_setup.host.resolve;
    setup.gatewayLimits = gatewayLimits([](const QString& name) {
        nrt::NCCCommonSettings settings;
        settings.beginGroup(QStringLiteral("requestGateway"));
        return settings.value(name);
    });
    setup.headless = m_setup.line.headless;
    setup.startupPagesFile = m_setup.dataDir + QStringLiteral("/startup-pages.json");
    try {
        m_browser = std::make_unique<BrowserEnvironment>(setup);
    } catch (const std::exception& error) {
        return QStringLiteral("the browser cannot be started: %1").arg(QString::fromLocal8Bit(error.what()));
    }
    m_browser->setProtocolHandler([this](NHelioBrowserWidgetBase* browser, const QUrl& url, bool marked) {
        openProtocol(browser, url, marked);
    });
    m_browser->setLeaveHandler([this](NHelioBrowserWidgetBase* browser, std::function<void(bool)> done) {
        askToLeave(browser, done);
    });
    return {};
}

void ShellProgram::startWindows()
{
    ShellApplication::Setup setup;
    setup.user = toUserInfo(m_setup.host.user);
    setup.translationsDir = installRoot() + QStringLiteral("/translations");
    setup.cloudService.client = {
        QCoreApplication::applicationDirPath() + QStringLiteral("/vltcloudsvr"), m_setup.dataDir, {}};
    setup.cloudService.apiUrl = m_setup.host.domains.value(QStringLiteral("quill_api"));
    setup.cloudService.resolve = m_setup.host.resolve;
    setup.offersSystemPrograms = !m_setup.line.headless;
    setup.discardCheckSeconds = discardCheckSeconds();
    setup.recoveryDir = m_setup.dataDir + QStringLiteral("/recovery");
    setup.quickAccessFile = m_setup.dataDir + QStringLiteral("/quick-access.json");
    setup.documentsSite = m_setup.host.domains.value(QStringLiteral("quill_api_spec"));
    m_application = std::make_unique<ShellApplication>(setup);
    connect(m_application.get(), &ShellApplication::pageAdded, m_pages.get(), &PageDirectory::onPageAdded);
    connect(m_application.get(), &ShellApplication::pageRemoved, m_pages.get(),
            &PageDirectory::onPageRemoved);
    m_quit = std::make_unique<OrderlyQuit>(*m_application, !m_unattendedDialogs);
    connect(&m_quitSignals, &QuitSignals::quitRequested, m_quit.get(), &OrderlyQuit::request);
    m_user = std::make_unique<UserSession>(m_setup.host.user, *m_application, *m_services);
    CloudWindows::Attendance attendance;
    attendance.answers = m_unattendedDialogs ? &m_dialogAnswers : nullptr;
    attendance.signsInUnasked = m_setup.line.headless;
    m_cloudWindows = std::make_unique<CloudWindows>(*m_application, *m_user, attendance);
    m_cloudService = std::make_unique<CloudServiceLink>(m_application->cloudService(), *m_services,
                                                        m_setup.dataDir, m_cloudWindows->diagnosisStarter());
    m_opener = std::make_unique<PageOpener>(*m_application, *m_pages);
    m_recoverOffer =
        std::make_unique<RecoverOffer>(*m_application, m_unattendedDialogs ? &m_dialogAnswers : nullptr);
    m_browser->setNewPageHandler([this](NHelioBrowserWidgetBase* opener, IHelioBrowserPageFactory* factory,
                                        const QUrl& url) { m_opener->openForBrowser(opener, factory, url); });
    if (m_stories)
        showStories();
    if (m_control)
        connectControl();
}

void ShellProgram::showStories()
{
    connect(m_browser.get(), &nheliostat::browser::BrowserEnvironment::requestFinished, m_stories.get(),
            &StoryRecorder::onRequestFinished);
    connect(m_application.get(), &ShellApplication::windowOpened, m_stories.get(),
            [this](ShellMainWindow* window) {
                new StoryDock(*window, *m_application, *m_stories, *m_pages); // the window's child
            });
}

void ShellProgram::connectControl()
{
    connect(m_browser.get(), &nheliostat::browser::BrowserEnvironment::requestFinished,
            &m_control->notifications(), &HostNotifications::onRequestFinished);
    connect(m_control.get(), &ControlSession::ended, m_quit.get(), &OrderlyQuit::order);
    // Later: the response goes out first.
    connect(m_control.get(), &ControlSession::quitAsked, m_quit.get(), &OrderlyQuit::order,
            Qt::QueuedConnection);
    m_control->add({storyExportMethod(m_stories.get())});
    m_tabMethods = std::make_unique<TabMethods>(*m_application, *m_pages);
    m_control->add(m_tabMethods->methods());
    m_control->serve(*m_application, *m_user, m_dialogAnswers);
}

QString ShellProgram::loadAddOn()
{
    const QString error = loadAddOnLibrary(libraryDirectory(), QStringLiteral("skyleaf"));
    return error.isEmpty() ? error : QStringLiteral("the documents add-on cannot be loaded: %1").arg(error);
}

void ShellProgram::openFirstWindow()
{
    ShellMainWindow* window = m_application->openMainWindow();
    window->resize(windowSize);
    window->show();
    if (m_setup.line.text || !m_setup.line.control)
        m_opener->openDocumentsPage(*window, m_setup.line.text.value_or(QString()));
    m_recoverOffer->show(*window, m_setup.line.text ? nullptr : window->area().currentPage());
}

void ShellProgram::listenToLaterStarts()
{
    m_laterStarts = std::make_unique<HandOverServer>();
    connect(m_laterStarts.get(), &HandOverServer::handedOver, this, &ShellProgram::showHandedOver);
    const auto socket = m_setup.instance.listen();
    if (!socket)
        NxLoggerLite::writeWarning(QStringLiteral("shell"), socket.error().text);
    else
        m_laterStarts->listen(*socket);
}

void ShellProgram::showHandedOver(const HandOver& wish)
{
    auto* window = qobject_cast<ShellMainWindow*>(m_application->widget());
    if (!window)
        return;
    if (wish.text)
        m_opener->openDocumentsPage(*window, *wish.text);
    window->showToFront(true, true, true);
}

void ShellProgram::askToLeave(NHelioBrowserWidgetBase* browser, const std::function<void(bool)>& done)
{
    NHelioAppPage* page = nullptr;
    for (QWidget* holder = browser->parentWidget(); holder && !page; holder = holder->parentWidget())
        page = qobject_cast<NHelioAppPage*>(holder);
    if (!page)
        return done(true);
    const auto ended = [done](bool leaves, const QVector<NHelioAppPage*>&) { done(leaves); };
    (new LeaveRequest({page}, LeaveRequest::Purpose::Restart, LeaveRequest::Manner::Ask, ended, browser))
        ->start();
}

void ShellProgram::openProtocol(NHelioBrowserWidgetBase*, const QUrl& url, bool)
{
    if (m_setup.line.headless || !QDesktopServices::openUrl(url))
        NxLoggerLite::writeWarning(QStringLiteral("shell"),
                                   QStringLiteral("no program for %1").arg(url.toDisplayString()));
}

} // namespace shell
