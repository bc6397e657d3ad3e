#pragma once

#include "offline/NDOPInjectHtml.h"
#include "offline/NDOPResponseData.h"
#include "offline/PackageFiles.h"
#include "zeolite/IWebViewResourceProviderCallback.h"

#include <QMap>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QTimer>
#include <QVariant>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>

class NHelioBrowserWidgetBase;

namespace NDocsOfflinePage {

class NDOPLocalResourceDataPreloader;

/**
 * Answers the browser's requests for the web application from local data: the page and the scripts of a local
 * package, and replies of the documents server that were fetched in advance.
 *
 * One instance a process, made on the user-interface thread, on which everything is called unless it says
 * otherwise. What it registers with a browser is called on the browser's threads and keeps no manager alive;
 * none of it waits for the user-interface thread.
 */
class NDOPResourceManager : public QObject, public std::enable_shared_from_this<NDOPResourceManager>
{
    Q_OBJECT
public:
    /** Created on first use; tests start with a fresh one after nreadonce::resetForTest(). */
    static std::shared_ptr<NDOPResourceManager> instance();
    ~NDOPResourceManager() override;

    /** Starts preloading the package that serves `officeType` in the given front version. */
    void loadLocalResources(const QString& fileId, const QString& officeType, const QString& frontVer);
    /** As above, for the front version recorded for the file. */
    void loadLocalResources(const QString& fileId, const QString& officeType);

    // What a page's browser asks here. Origins have no path; empty texts or a null browser register nothing.
    void registerHtmlHandlers(const QString& origin, const QString& packageRoot, const QString& injectId,
                              NHelioBrowserWidgetBase* browser);
    void unregisterHtmlHandlers(const QString& origin, const QString& packageRoot,
                                NHelioBrowserWidgetBase* browser);
    void registerScriptHandlers(const QString& origin, const QString& packageRoot,
                                NHelioBrowserWidgetBase* browser);
    void unregisterScriptHandlers(const QString& origin, const QString& packageRoot,
                                  NHelioBrowserWidgetBase* browser);
    /** `kind` is a reply name: "open_file", "get_env_config" or "get_ssr_content". */
    void registerRequestHandler(const QString& kind, const QString& fileId, const QString& officeType,
                                const QString& connId, NHelioBrowserWidgetBase* browser);
    void unregisterRequestHandler(const QString& kind, const QString& fileId, const QString& officeType,
                                  NHelioBrowserWidgetBase* browser);

    // The replies that a run fetched in advance. The run is named by its connection id, so that no other run,
    // and no other page, is ever given its replies.
    /** Forgets the reply; a request that waits for it is let go without an answer. */
    void clearRequest(const QString& kind, const QString& fileId, const QString& officeType,
                      const QString& connId);
    /** Keeps the reply, in the place of an earlier one, and answers a request that waits. */
    void setResponseData(const QString& kind, const QString& fileId, const QString& officeType,
                         const QString& connId, const NDOPResponseData& data);
    /** The reply; none before it came. */
    std::optional<NDOPResponseData> responseData(const QString& kind, const QString& fileId,
                                                 const QString& officeType, const QString& connId) const;

    // The data injected into a page, by injection id. Setters change nothing without a record.
    void createInjectRecord(const QString& injectId);
    void removeInjectRecord(const QString& injectId);
    void setInjectConnId(const QString& injectId, const QString& connId);
    void setInjectUrl(const QString& injectId, const QString& url);
    void setInjectFileInfo(const QString& injectId, const QByteArray& fileInfo);
    void setInjectPackagePaths(const QString& injectId, const QString& syncPath, const QString& cachePath);
    /** Gives a record what another one knows of the document's local package. */
    void copyInjectLocalData(const QString& fromInjectId, const QString& toInjectId);
    /** Whether a request for a page is for the document of the record; true without a record. Any thread. */
    bool isPageOfRecord(const QString& injectId, const QString& requestUrl) const;
    /** The script that injects the server's data; empty when there is no record. */
    QString injectScriptFor(const QString& injectId, const QString& officeType, const QVariant& list) const;

    /** Whether packages are served from memory. Any thread. */
    bool isPreloadingOn() const { return m_isPreloadingOn; }
    /** How many injection records, replies and waiting requests there are. */
    struct Counts
    {
        int injectRecords = 0;
        int replies = 0;
        int waiting = 0;
    };
    Counts counts() const;
    /**
     * The bytes of a file below `directory` from memory, else from the disk and kept; none for one of more
     * than `largest`. Any thread.
     */
    QByteArray readPreloadedOrDisk(const QString& directory, const QString& path,
                                   qint64 largest = npackagefiles::largestScript) const;

Q_SIGNALS:
    void startPreloadLocalResource(const QString& packageRoot, const QString& officeType);
    void startUnloadLocalResource(const QString& packageRoot);

public Q_SLOTS:
    void readDOPHtmlData(const QString& packageRoot, const QString& injectId,
                         const std::shared_ptr<IWebViewResourceProviderCallback>& callback);
    /** Any thread. */
    void readDOPPreloadedHtmlData(const QString& packageRoot, const QString& injectId,
                                  const std::shared_ptr<IWebViewResourceProviderCallback>& callback);
    /** Any thread. */
    void readDOPPreloadedJsData(const QString& urlPrefix, const QString& localPrefix,
                                const std::shared_ptr<IWebViewResourceProviderCallback>& callback);
    void readResponseData(const QString& requestKey, unsigned timeoutMs,
                          const std::shared_ptr<IWebViewResourceProviderCallback>& callback);
    void onResponseDataTimeout();
    void onPreloadedDataClean();

private:
    NDOPResourceManager();

    static QString urlOf(const QString& kind, const QString& fileId, const QString& officeType);
    static QString keyOf(const QString& kind, const QString& fileId, const QString& officeType,
                         const QString& connId);
    void refreshPreloading();
    bool mayPreload();
    void preload(const QString& packageRoot, const QString& officeType);
    QByteArray readCached(const QString& packageRoot, const QString& path);
    QByteArray injected(const QByteArray& html, const QString& packageRoot, const QString& injectId,
                        const QString& officeType);
    template <typename ReadHtml>
    void answerHtml(const QString& packageRoot, const QString& injectId,
                    IWebViewResourceProviderCallback& callback, const char* operation, ReadHtml readHtml);
    void setResponse(const QString& requestKey, const NDOPResponseData& data);
    void dropTimer(const QString& requestKey);
    std::optional<NDOPInjectHtml> injectRecord(const QString& injectId) const;
    template <typename Change>
    void changeInjectRecord(const QString& injectId, Change change);

    QMap<QString, QByteArray> m_fileCache;       //!< pages read from the disk, by path with native separators
    QMap<QString, NDOPResponseData> m_responses; //!< by request key
    QMap<QString, std::shared_ptr<IWebViewResourceProviderCallback>> m_waiting; //!< by request key
    QMap<QString, QPointer<QTimer>> m_timers;                                   //!< of the waiting requests
    mutable std::mutex m_lock;                                                  //!< guards m_injectRecords
    QMap<QString, NDOPInjectHtml> m_injectRecords;
    const std::shared_ptr<NDOPLocalResourceDataPreloader> m_preloader;
    QSet<QString> m_loadedPackages; //!< package roots
    std::atomic<bool> m_isPreloadingOn{false};
};

} // namespace NDocsOfflinePage
