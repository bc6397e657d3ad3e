#pragma once

#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "zeolite/NPlugin.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <optional>

/** One page load, as the proxy decision needs it. */
struct NDOPProxyInfo
{
    QString fileId;
    QString officeType;
    QString frontVer;
    QString injectId;
    QString connId;
    QString notifyUrl;
    QString pluginName;
    QString pluginPath;
    QString traceId;
};

/**
 * Decides for one page whether its front end comes from a local package, and has the browser's requests
 * answered from it. Every step of the decision is reported, after it took effect; a refusal leaves the page
 * to the server. What was installed for an earlier load is taken out before the decision for the next one.
 * User-interface thread.
 */
class NCloudDocsPageProxyManager : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    void setBrowser(const QPointer<NHelioBrowserWidgetBase>& browser) { m_browser = browser; }
    /** First installation for a page load. */
    void setProxy(const NDOPProxyInfo& info);
    /** Installs again for the front version of `info`; true when that version is served or already was. */
    bool updateProxy(const NDOPProxyInfo& info);
    /** Removes what was installed for the present load, so that the server answers everything. */
    void removeProxies();

    void addHtmlProxy();
    void removeHtmlProxy();
    void addLocalResourceProxy();
    void removeLocalResourceProxy();
    void addRequestProxy(const QString& replyName);
    void addRequestProxies();
    void removeRequestProxy(const QString& replyName);
    /** Removes the proxies of all prefetched replies. */
    void removeRequestProxies();

    bool checkUrl(const QString& notifyUrl);
    bool checkFrontVerUsableByPck(const QString& frontVer);
    bool checkFrontVerUsableVcs(const QString& frontVer);
    bool setProxyUsingLocalPlugin(const QString& path);
    /** The directory of the page's package plug-in; empty when it cannot be had. */
    bool loadPackagePlugin(QString& path);

    /** The page load whose proxies are installed; its package path is empty while no package is served. */
    const NDOPProxyInfo& current() const { return m_current; }

public Q_SLOTS:
    void slog_pluginLoaded();

private:
    struct HtmlProxy
    {
        QString origin;
        QString packagePath;
        QString injectId;
    };
    struct LocalResourceProxy
    {
        QString origin;
        QString packagePath;
    };

    bool isBrowserReady() const;
    /** Whether what is installed belongs to the load that `info` describes. */
    bool isCurrentLoad(const NDOPProxyInfo& info) const;
    bool isFrontVerUsable(const QString& frontVer);
    bool setProxyUsingRecord();
    void report(const char* step, const QString& error = QStringLiteral("no_error"),
                const std::optional<QString>& resetFrontVer = std::nullopt) const;

    QPointer<NHelioBrowserWidgetBase> m_browser;
    NDOPProxyInfo m_current;
    NDOPProxyInfo m_requested;
    HtmlProxy m_htmlProxy;
    LocalResourceProxy m_localResourceProxy;
    NPluginPtr m_plugin;
};
