#pragma once

#include <QObject>
#include <QString>
#include <QVariant>

#include <memory>

namespace NDocsOfflinePage {

/** Answers the browser's requests for the web application from local data. One instance, user-interface
 * thread. */
class NDOPResourceManager : public QObject
{
    Q_OBJECT
public:
    /** Created on first use. */
    static std::shared_ptr<NDOPResourceManager> instance();

    /** Starts preloading the package that serves `officeType` in the given front version. */
    void loadLocalResources(const QString& fileId, const QString& officeType, const QString& frontVer);
    /** As above, for the front version recorded for the file. */
    void loadLocalResources(const QString& fileId, const QString& officeType);

    void createInjectRecord(const QString& injectId);
    void removeInjectRecord(const QString& injectId);
    void setInjectConnId(const QString& injectId, const QString& connId);
    void setInjectUrl(const QString& injectId, const QString& url);
    /** The script that injects the server's data; empty when there is no record. */
    QString injectScriptFor(const QString& injectId, const QString& officeType, const QVariant& list) const;

private:
    NDOPResourceManager() = default;
};

} // namespace NDocsOfflinePage
