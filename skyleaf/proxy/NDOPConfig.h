#pragma once

#include <QHash>
#include <QObject>
#include <QReadWriteLock>
#include <QString>
#include <QUrl>

namespace NDocsOfflinePage {

/**
 * Which kinds of documents are served from local packages, and the names that belong to them. Created on the
 * user-interface thread; any thread may ask afterwards, since browser threads inject data into pages.
 */
class NDOPConfig : public QObject
{
    Q_OBJECT
public:
    /** Created on first use; lives as long as the process. */
    static NDOPConfig& instance();

    /** Whether documents of the type are served from a local package. */
    bool isDopEnabled(const QString& officeType) const;
    bool isOfflineEditEnabled(const QString& officeType) const;
    QString packageName(const QString& officeType) const;
    QString pluginName(const QString& officeType) const;
    bool isPreopenSupported(const QString& officeType) const;
    bool isSsrSupported(const QString& officeType) const;
    /** Whether the URL carries what a page of the hybrid front end needs: a known "officeType" and "openEnv".
     */
    bool isHybridUrl(const QUrl& url) const;
    /** Whether pages of other hosts than the documents site's are served from local packages too. */
    bool forceProxy() const;
    /** The "officeType" query item; empty for a URL that is empty, not valid or without query. */
    QString officeTypeOfUrl(const QString& url) const;
    QString officeTypeCode(const QString& fileType) const;

public Q_SLOTS:
    void onFpccombInitFinish();

private:
    struct Switches
    {
        bool dop = false;
        bool offlineEdit = false;
    };

    NDOPConfig();
    void initConfig();

    Switches switchesOf(const QString& officeType) const;

    mutable QReadWriteLock m_lock;
    QHash<QString, Switches> m_switches; //!< by office type
};

/** The docs offline page as a whole; read once per process. */
bool isDopMasterSwitchOn();
/** Editing without the server as a whole; read once per process. */
bool isOfflineEditMasterSwitchOn();
/** Whether documents are printed through the suite. */
bool isDocsPrintSupported();

} // namespace NDocsOfflinePage
