#pragma once

#include "nheliostat/NHelioBrowserWidgetBase.h"

#include <QObject>
#include <QPointer>
#include <QString>

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

/** Decides for one page whether its front end comes from a local package. User-interface thread. */
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
    /** Removes what was installed for the page. */
    void removeProxies();

private:
    bool isBrowserReady() const;

    QPointer<NHelioBrowserWidgetBase> m_browser;
    NDOPProxyInfo m_requested;
};
