#pragma once

#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioCloudSvrProxy.h"
#include "nheliostat/documents/LocalDocumentPageItem.h"
#include "nheliostat/framework/HeapTrim.h"
#include "nheliostat/framework/LeaveRequest.h"
#include "nheliostat/framework/PluginTranslators.h"
#include "nheliostat/framework/ShellBrowserPageItem.h"
#include "nheliostat/framework/ShellCloudFilesMgr.h"
#include "nheliostat/framework/ShellCloudService.h"
#include "nheliostat/framework/ShellCollectInfoMgr.h"
#include "nheliostat/framework/ShellSkin.h"

#include <QPointer>
#include <QTimer>

#include <functional>
#include <memory>

class NHelioAppPage;
class NHelioCommonJSAPI;
class ShellAccount;
class ShellCloudSvrProxy;
class ShellMainWindow;
class ShellPageMoves;
class ShellQuickAccess;
class ShellRecovery;

/**
 * The shell: its windows, user and looks. There is one; NHelioApplication::instance() answers it while it
 * lives. It raises aboutToQuit before its windows and pages go, then deletes them. User-interface thread.
 */
class ShellApplication final : public NHelioApplication
{
    Q_OBJECT
public:
    struct Setup
    {
        NHelioUserInfo user;
        bool dark = false;
        QString translationsDir;          //!< of "<name>_<locale>.qm" files; may be empty
        bool offersSystemPrograms = true; //!< whether files may be handed to programs of the system
        int discardCheckSeconds = 60;     //!< how often inactive pages may be released; 0 for never
        QString recoveryDir;              //!< of WorkAreaStore; empty: nothing is kept for recovery
        QString quickAccessFile;          //!< of QuickAccessList; empty: kept in memory
        QString documentsSite;            //!< where links to documents begin; may be empty
        ShellCloudService cloudService;
    };
    /** What a window's "new page" does. */
    using NewPageHandler = std::function<void(ShellMainWindow&)>;

    explicit ShellApplication(const Setup& setup, QObject* parent = nullptr);
    ~ShellApplication() override;

    /** A new window without pages, not yet shown; owned by the application. */
    ShellMainWindow* openMainWindow();
    /** Replaces what "new page" does: by default openDocumentsPage with an empty text. */
    void setNewPageHandler(NewPageHandler handler);
    /** Opens a documents page (type 1) that gets the properties, is notified with the text, made current and
     * loaded; null for none. */
    NHelioAppPage* openDocumentsPage(ShellMainWindow& window, const QString& text,
                                     const QVariantMap& properties = {});
    /** Shows a URL in a plain browser page of the window that holds `origin`, else of the first window. */
    void openUrl(const QString& url, const QObject* origin);

    void setUser(const NHelioUserInfo& user);
    const NHelioUserInfo& user() const;
    void setDark(bool dark);
    ShellCollectInfoMgr& collectInfo() { return m_collectInfo; }
    ShellCloudSvrProxy& cloudService() { return *m_cloudSvrProxy; }
    ShellPageMoves& pageMoves() { return *m_pageMoves; }
    ShellQuickAccess& quickAccess() { return *m_quickAccess; }
    ShellRecovery& recovery() { return *m_recovery; }
    /** Releases the inactive pages of all windows that can be; also runs every discardCheckSeconds. */
    void releaseInactivePages();
    /**
     * Has the documents of all pages agree to end, and ends them; `done` says whether all did. A request that
     * is under way gives way, except that one that only tells goes on as it is, and `done` is dropped.
     */
    void leaveAllPages(LeaveRequest::Manner manner, std::function<void(bool all)> done);
    /** Lets a script object of a page reach the shell; script objects call it themselves. */
    void serveScriptObject(NHelioCommonJSAPI& scriptObject);

    QVector<NHelioMainWindow*> mainWindows() const override;
    /** A page that is kept aside, and what is in it, belongs to the window that it comes back to. */
    NHelioMainWindow* findRelativeHelioMainWindow(const QObject* object) const override;
    NHelioCloudSvrProxy* cloudSvrProxy() const override;
    NHelioCloudFilesMgr* cloudFilesMgr() const override { return &m_cloudFilesMgr; }
    NHelioCloudCollectInfoMgr* getCloudCollectInfoMgr() const override { return &m_collectInfo; }
    NHelioSkin* helioSkin() const override { return &m_skin; }
    NHelioAccount* account() const override;
    QObject* scriptIpcEventHub() const override { return m_scriptIpcEventHub; }
    bool isShelllessMode() const override { return false; }
    QWidget* widget() const override;
    void installPluginTranslation(const QString& module, const QStringList& names) override;
    void uninstallPluginTranslation(const QString& module, const QStringList& names) override;

Q_SIGNALS:
    /** A new window, without pages and not yet shown. */
    void windowOpened(ShellMainWindow* window);
    void pageAdded(NHelioAppPage* page);
    /** The page is out of its window; it may be in the middle of its destruction: only compare it. */
    void pageRemoved(NHelioAppPage* page);
    /** The current page of a window changed; null when the window has no page left. */
    void currentPageChanged(NHelioAppPage* page);
    /** A page's script asks for the user to sign in. */
    void loginRequested();

private:
    ShellMainWindow* firstWindow() const;
    void signOut();
    void announceQuit();

    PluginTranslators m_translators;
    ShellBrowserPageItem m_browserPageItem;
    LocalDocumentPageItem m_documentPageItem;
    ShellCloudSvrProxy* m_cloudSvrProxy;
    ShellAccount* m_account;
    QObject* m_scriptIpcEventHub;
    mutable ShellSkin m_skin;
    mutable ShellCollectInfoMgr m_collectInfo;
    mutable ShellCloudFilesMgr m_cloudFilesMgr;
    std::unique_ptr<ShellPageMoves> m_pageMoves;
    std::unique_ptr<ShellQuickAccess> m_quickAccess;
    std::unique_ptr<ShellRecovery> m_recovery;
    NewPageHandler m_newPageHandler;
    QVector<QPointer<ShellMainWindow>> m_windows;
    QTimer m_discardTimer;
    HeapTrim m_heapTrim;
    QPointer<LeaveRequest> m_leaving; //!< of all pages
    bool m_quitAnnounced = false;
};
