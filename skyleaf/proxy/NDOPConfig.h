#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

namespace NDocsOfflinePage {

/** Which kinds of documents are served from local packages, and the names that belong to them. */
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
    bool forceProxy() const;
    /** The "officeType" query item; empty for a URL that is empty, not valid or without query. */
    QString officeTypeOfUrl(const QString& url) const;
    QString officeTypeCode(const QString& fileType) const;

private:
    NDOPConfig() = default;
};

/** The docs offline page as a whole. */
bool isDopMasterSwitchOn();

} // namespace NDocsOfflinePage
