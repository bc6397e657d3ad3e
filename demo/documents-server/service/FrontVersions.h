#pragma once

#include <map>

#include <QJsonObject>
#include <QString>

#include "store/DocumentStore.h"
#include "store/Result.h"

namespace documents {

/** What the service says about one front-end package. */
struct FrontVersion
{
    QString version;
    qint64 expireTime = 0; ///< seconds since the epoch
    bool mustUpgrade = false;
};

/**
 * The front-end versions in force: the site's own (its file "version", else "1.0.0"), valid for thirty days,
 * for every package that no override speaks of. For one thread.
 */
class FrontVersions
{
public:
    FrontVersions(QString siteDirectory, Clock clock);

    FrontVersion of(const QString& package) const;
    /** The version for one document: its own override's members come before those of its package. */
    FrontVersion of(const QString& package, const QString& documentId) const;

    /**
     * Replaces all overrides: {"PACKAGE": {"front_ver": text, "expire_time": seconds, "must_upgrade": bool},
     * …, "files": {"DOCUMENT-ID": {…}, …}}, every member optional. On a mistake nothing changes and the error
     * names the member.
     */
    Failure setOverrides(const QJsonObject& overrides);

private:
    FrontVersion chosen(const QJsonObject& members) const;

    QString m_siteDirectory;
    Clock m_clock;
    std::map<QString, QJsonObject> m_overrides; ///< by package
    std::map<QString, QJsonObject> m_documents; ///< by document id
};

} // namespace documents
