#pragma once

#include "offline/NRunData.h"
#include "page/LoadState.h"
#include "proxy/NCloudDocsPageProxyManager.h"
#include "server/NCloudDocsRequestTask.h"

#include <QElapsedTimer>
#include <QMap>
#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>
#include <optional>

class NHelioBrowserWidgetBase;
class NOpenTelemetry;
class NTakeOver;
class NxWebViewContainer;

/** What a load asks of its page. */
class IDocumentLoadHost
{
public:
    virtual ~IDocumentLoadHost() = default;

    /** Null until there is one. */
    virtual NHelioBrowserWidgetBase* loadBrowser() const = 0;
    virtual NCloudDocsPageProxyManager& loadProxies() = 0;
    virtual NTakeOver& loadTakeOver() = 0;
    virtual NOpenTelemetry& loadTelemetry() = 0;
    /** The suffix of the page's file name, and the page's suffix; either may be empty. */
    virtual QString fileNameSuffix() const = 0;
    virtual QString pageSuffix() const = 0;
    virtual void updateUserAgent() = 0;
};

/** Why a load began. */
enum class LoadReason {
    Told,
    MadeAhead, //!< for a document that is about to be opened
    Link,
    Navigation, //!< the browser went somewhere by itself
    Reload,
    Crash,
    LoginChange,
    Return, //!< after the page was released
    Recovery,
};

/**
 * One load of one document in a page: its address and ids, what it waits for, its server requests and their
 * replies, and whatever is registered for it with the browser. All of that ends with it. It alone gives the
 * browser a URL. User-interface thread; made by its page, and replaced by the next load.
 *
 * Log lines name the operations as the page's.
 */
class NDocumentLoad : public QObject
{
    Q_OBJECT
public:
    NDocumentLoad(IDocumentLoadHost& host, LoadReason reason, QObject* page);
    ~NDocumentLoad() override;

    /** Gives up everything; the object is of no use afterwards. */
    void end();
    /** Gives up everything but what is needed to come back: the web view goes. */
    void rest();

    LoadReason reason() const { return m_reason; }
    LoadState state() const { return m_state; }
    bool isShown() const { return m_state == LoadState::Shown || m_state == LoadState::Ready; }
    bool isWebFileReady() const { return m_state == LoadState::Ready; }
    bool isWaitingForVersion() const { return m_state == LoadState::CheckingVersion; }
    /** Whether its URL waits for an answer of the server. */
    bool isHeldBack() const;

    /** The URL that the page is to show; empty for none. */
    const QString& url() const { return m_url; }
    const QString& fileId() const { return m_fileId; }
    const QString& officeType() const { return m_officeType; }
    const QString& traceId() const { return m_traceId; }
    /** What is loaded again when it has to be: where the browser is on the service's sites; may be empty. */
    const QString& reloadUrl() const { return m_reloadUrl; }
    void setReloadUrl(const QString& url) { m_reloadUrl = url; }
    /** Where the browser is now. */
    void noteAddress(const QString& url);

    // What it is for. Each may begin requests.
    /** Whether a URL that the page is told is this load's: the same as before, or its document not shown yet.
     */
    bool takes(const QString& url) const;
    void take(const QString& url);
    /** The document that is about to be opened, with its URL as it stands. */
    void takeAhead(const QString& url, const QString& fileId, const QString& officeType);
    /** Where the browser went by itself: shown already. */
    void adopt(const QString& url, const NDocumentLoad& earlier);
    /** The same document once more; nothing is fetched in advance for it. */
    void repeat(const NDocumentLoad& earlier);
    /** The same document after its web view was released, as an open of its own. */
    void comeBack(const NDocumentLoad& earlier, qint64 loadStartMs);

    // Showing it. `load` and `notify` differ in when they hold it back.
    void showForLoad();
    void showForNotify();
    /** Sends the browser to the URL as the address bar would. */
    void navigate();
    /** Shows the document at another address, for a reload. */
    void showAt(const QString& address);
    /** Shows a page that is no document's, such as an error page. */
    void showInstead(const QUrl& page);
    /** Whether the browser, at that address, went to another document by itself. */
    bool isLeftFor(const QString& address);

    // What the browser reports.
    void onViewMade();
    /** The version check or the run, whichever the document wants. */
    void startRequests();
    void onWebFileReady(const QMap<QString, QString>& info);
    /** The browser is where it was sent, or was led on to. */
    void setLoadFinished();
    bool isLoadFinished() const { return m_isLoadFinished; }
    const QMap<QString, QString>& webFileInfo() const { return m_webFileInfo; }
    void clearWebFileInfo() { m_webFileInfo.clear(); }

    /** The replies that were fetched in advance. */
    std::optional<NDocsOfflinePage::NDOPResponseData> reply(const QString& name) const;
    /** Null before the first request. */
    const NCloudDocsRequestTask* requestTask() const { return m_task.get(); }

Q_SIGNALS:
    void officeTypeChanged(const QString& officeType);
    /** A reply that was fetched in advance. */
    void replyCame(const QString& name, const QByteArray& body, qint64 startMs, qint64 endMs);
    void cookiesCame(const QList<QNetworkCookie>& cookies);

private Q_SLOTS:
    void onRequestTaskFinished(const NCloudDocsRequestTaskResult& result);
    void onStartedPreRequest();
    void onDelayLoadUrl();
    void onVcsResponseTimeout();

private:
    bool advance(LoadEvent event);
    void drop();
    void goOnWhere(const NDocumentLoad& earlier);
    NxWebViewContainer* container() const;
    void setOfficeType(const QString& officeType);

    // Showing.
    void initDocsLocalResource();
    void installForRun();
    void _updateProxy(const QString& frontVer);
    bool _isDelayLoadUrl() const;
    void _delayLoadUrl();
    void showUrl();
    void _loadUrl();
    void giveToBrowser(const QUrl& url);
    bool checkTakeOver();
    void _handlePreloadDocFrameworkWork();
    NDOPProxyInfo proxyInfo(const QString& frontVer = {}) const;

    // Requests.
    void _startNetworkRequest();
    void startRun();
    void makeRunData();
    void _waitStartedPreRequest();
    void _startVcsRequest();
    void ensureRequestTask();

    // Answers.
    void endVcsWait();
    void loadNormalized();
    void _handleVcs(const NCloudDocsRequestTaskResult& result);
    void _handleVcsWithDelayLoadUrl(const NCloudDocsRequestTaskResult& result);
    void takeCheckedVersion(const NCloudDocsRequestTaskResult& result, const QString& clientVersion);
    void _handleEnvConfig(const NCloudDocsRequestTaskResult& result);
    void _handleEnvConfigWithDelayLoadUrl(const NCloudDocsRequestTaskResult& result);
    void _handleDelayLoadUrlAfterRequest(const QString& frontVer);
    void _refreshOnLocalResourceResetFail();

    IDocumentLoadHost& m_host;
    const LoadReason m_reason;
    LoadState m_state = LoadState::Told;

    QString m_url;
    QString m_fileId;
    QString m_officeType;
    QString m_traceId;
    QString m_reloadUrl;

    std::unique_ptr<NCloudDocsRequestTask> m_task;
    std::unique_ptr<NDocsOfflinePage::NRunData> m_run; //!< none before the requests start
    bool m_isRunStarted = false;
    bool m_isVersionAsked = false;
    bool m_isVersionChecked = false; //!< the check was sent by an earlier load of the document
    QElapsedTimer m_runTimer;
    QElapsedTimer m_replyTimer; //!< since the last reply
    QTimer m_versionTimer;
    QTimer m_delayTimer;
    bool m_isDelayOver = false;
    QString m_requestedFrontVer; //!< that the server asks for

    bool m_waitsForView = false; //!< to be shown once there is one
    bool m_hasArrived = false;   //!< the browser was where it was sent
    bool m_isResetRefreshed = false;
    bool m_isLoadFinished = false;
    QMap<QString, QString> m_webFileInfo;
};
