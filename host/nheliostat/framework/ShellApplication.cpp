#include "nheliostat/framework/ShellApplication.h"

#include "nheliostat/NHelioCommonJSAPI.h"
#include "nheliostat/framework/ApplicationInstance.h"
#include "nheliostat/framework/CloudToLocalSteps.h"
#include "nheliostat/framework/ShellAccount.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellCloudSvrProxy.h"
#include "nheliostat/framework/ShellMainWindow.h"
#include "nheliostat/framework/ShellPageMoves.h"
#include "nheliostat/framework/ShellQuickAccess.h"
#include "nheliostat/framework/ShellRecovery.h"

#include <QCoreApplication>

#include <chrono>
#include <utility>

namespace {

constexpr int documentsPageType = 1;

} // namespace

ShellApplication::ShellApplication(const Setup& setup, QObject* parent)
    : NHelioApplication(parent)
    , m_translators(setup.translationsDir)
    , m_documentPageItem(setup.offersSystemPrograms)
    , m_cloudSvrProxy(new ShellCloudSvrProxy(setup.user, setup.cloudService, this))
    , m_account(new ShellAccount(*m_cloudSvrProxy, this))
    , m_scriptIpcEventHub(new QObject(this))
    , m_skin(setup.dark)
    , m_cloudFilesMgr(*this)
    , m_pageMoves(std::make_unique<ShellPageMoves>([this] { return openMainWindow(); }))
    , m_quickAccess(std::make_unique<ShellQuickAccess>(*this, setup.quickAccessFile, setup.documentsSite))
    , m_recovery(std::make_unique<ShellRecovery>(setup.recoveryDir, [this] { return openMainWindow(); }))
    , m_discardTimer(this)
{
    nheliostat::host::setApplication(this);
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this,
            &ShellApplication::announceQuit);
    setNewPageHandler({});
    connect(m_cloudSvrProxy, &ShellCloudSvrProxy::commandReceived, m_quickAccess.get(),
            &ShellQuickAccess::onCommand);
    m_quickAccess->setDark(setup.dark);
    // Add-ons find the collector by this name.
    setProperty("CooperateInfoCollectCloudToLocal",
                QVariant::fromValue<QObject*>(new CloudToLocalSteps(this)));
    m_discardTimer.setObjectName(QStringLiteral("discardTimer"));
    connect(&m_discardTimer, &QTimer::timeout, this, &ShellApplication::releaseInactivePages);
    if (setup.discardCheckSeconds > 0)
        m_discardTimer.start(std::chrono::seconds(setup.discardCheckSeconds));
}

ShellApplication::~ShellApplication()
{
    announceQuit();
    // Nobody is asked any more, and nobody hears of it.
    qDeleteAll(findChildren<LeaveRequest*>(QString(), Qt::FindDirectChildrenOnly));
    m_pageMoves.reset();
    for (const QPointer<ShellMainWindow>& window : std::exchange(m_windows, {}))
        delete window;
    nheliostat::host::setApplication(nullptr);
}

ShellMainWindow* ShellApplication::openMainWindow()
{
    auto* window = new ShellMainWindow;
    window->setDark(m_skin.isDark());
    m_windows.removeAll(nullptr);
    m_windows.append(window);
    connect(&window->area(), &ShellCentralArea::pageAdded, this, &ShellApplication::pageAdded);
    connect(&window->area(), &ShellCentralArea::pageRemoved, this, &ShellApplication::pageRemoved);
    connect(&window->area(), &ShellCentralArea::pageReleased, &m_heapTrim, &HeapTrim::soon);
    connect(&window->area(), &ShellCentralArea::pageRemoved, &m_heapTrim, &HeapTrim::soon);
    connect(&window->area(), &ShellCentralArea::currentPageChanged, this,
            &ShellApplication::currentPageChanged);
    m_pageMoves->watch(*window);
    m_quickAccess->addTo(*window);
    m_recovery->watch(*window);
    connect(window, &ShellMainWindow::newPageRequested, this, [this, window] { m_newPageHandler(*window); });
    Q_EMIT windowOpened(window);
    return window;
}

void ShellApplication::setNewPageHandler(NewPageHandler handler)
{
    m_newPageHandler = std::move(handler);
    if (!m_newPageHandler)
        m_newPageHandler = [this](ShellMainWindow& window) { openDocumentsPage(window, {}); };
}

NHelioAppPage* ShellApplication::openDocumentsPage(ShellMainWindow& window, const QString& text,
                                                   const QVariantMap& properties)
{
    m_collectInfo.markOpenStarted();
    NHelioAppPage* page = window.area().addPage(documentsPageType, {}, {});
    if (!page)
        return nullptr;
    const QPointer<NHelioAppPage> opened = page;
    for (auto property = properties.begin(); property != properties.end(); ++property)
        page->setProperty(property.key().toUtf8().constData(), property.value());
    page->notify(text);
    if (opened)
        window.area().setCurrentPage(opened);
    if (opened)
        opened->load();
    return opened;
}

void ShellApplication::openUrl(const QString& url, const QObject* origin)
{
    NHelioMainWindow* window = findRelativeHelioMainWindow(origin);
    if (!window)
        window = firstWindow();
    if (window)
        window->centralArea()->addBrowserPage(url);
}

void ShellApplication::setUser(const NHelioUserInfo& user)
{
    m_cloudSvrProxy->setUser(user);
}

const NHelioUserInfo& ShellApplication::user() const
{
    return m_cloudSvrProxy->user();
}

void ShellApplication::setDark(bool dark)
{
    m_skin.setDark(dark);
    m_quickAccess->setDark(dark);
    for (const QPointer<ShellMainWindow>& window : std::as_const(m_windows)) {
        if (window)
            window->setDark(dark);
    }
}

void ShellApplication::releaseInactivePages()
{
    const QVector<QPointer<ShellMainWindow>> windows = m_windows;
    for (const QPointer<ShellMainWindow>& window : windows) {
        if (window)
            window->area().releaseInactivePages();
    }
}

void ShellApplication::leaveAllPages(LeaveRequest::Manner manner, std::function<void(bool)> done)
{
    if (m_leaving && m_leaving->manner() == LeaveRequest::Manner::Tell)
        return;
    if (m_leaving)
        m_leaving->cancel();
    QVector<NHelioAppPage*> pages = m_pageMoves->pagesAside();
    for (const QPointer<ShellMainWindow>& window : std::as_const(m_windows)) {
        if (!window)
            continue;
        window->area().cancelLeaving();
        pages += window->area().pages();
    }
    const auto end = [this, done](bool all, const QVector<NHelioAppPage*>& ended) {
        m_leaving.clear();
        // A document that has ended is of no use to anybody who stays.
        for (const QPointer<ShellMainWindow>& window : QVector<QPointer<ShellMainWindow>>(m_windows)) {
            if (!all && window)
                window->area().closeWithoutAsking(ended);
        }
        done(all);
    };
    m_leaving = new LeaveRequest(pages, LeaveRequest::Purpose::Close, manner, end, this);
    m_leaving->start();
}

void ShellApplication::serveScriptObject(NHelioCommonJSAPI& scriptObject)
{
    connect(&scriptObject, &NHelioCommonJSAPI::loginRequested, this, &ShellApplication::loginRequested);
    // Later: both may end the document that the call came from.
    connect(&scriptObject, &NHelioCommonJSAPI::logoutRequested, this, &ShellApplication::signOut,
            Qt::QueuedConnection);
    const QPointer<NHelioCommonJSAPI> origin = &scriptObject;
    connect(
        &scriptObject, &NHelioCommonJSAPI::openUrlRequested, this,
        [this, origin](const QString& url) { openUrl(url, origin); }, Qt::QueuedConnection);
}

void ShellApplication::signOut()
{
    NHelioUserInfo nobody = user();
    nobody.loggedIn = false;
    nobody.userId.clear();
    nobody.sessionKey.clear();
    nobody.cookies.clear();
    setUser(nobody);
}

void ShellApplication::announceQuit()
{
    if (std::exchange(m_quitAnnounced, true))
        return;
    m_recovery->end();
    Q_EMIT aboutToQuit();
}

QVector<NHelioMainWindow*> ShellApplication::mainWindows() const
{
    QVector<NHelioMainWindow*> windows;
    for (const QPointer<ShellMainWindow>& window : m_windows) {
        if (window)
            windows.append(window);
    }
    return windows;
}

ShellMainWindow* ShellApplication::firstWindow() const
{
    for (const QPointer<ShellMainWindow>& window : m_windows) {
        if (window)
            return window;
    }
    return nullptr;
}

NHelioMainWindow* ShellApplication::findRelativeHelioMainWindow(const QObject* object) const
{
    const QObject* outermost = nullptr;
    for (const QObject* holder = object; holder; holder = holder->parent()) {
        if (const auto* window = qobject_cast<const NHelioMainWindow*>(holder))
            return const_cast<NHelioMainWindow*>(window);
        outermost = holder;
    }
    return m_pageMoves ? m_pageMoves->windowOf(outermost) : nullptr;
}

NHelioCloudSvrProxy* ShellApplication::cloudSvrProxy() const
{
    return m_cloudSvrProxy;
}

NHelioAccount* ShellApplication::account() const
{
    return m_account;
}

QWidget* ShellApplication::widget() const
{
    ShellMainWindow* first = firstWindow();
    const QVector<NHelioMainWindow*> windows = mainWindows();
    const auto active = std::find_if(windows.begin(), windows.end(),
                                     [](const NHelioMainWindow* window) { return window->isActiveWindow(); });
    return active == windows.end() ? first : *active;
}

void ShellApplication::installPluginTranslation(const QString& module, const QStringList& names)
{
    m_translators.install(module, names);
}

void ShellApplication::uninstallPluginTranslation(const QString& module, const QStringList& names)
{
    Q_UNUSED(names)
    m_translators.uninstall(module);
}
