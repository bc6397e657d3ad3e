#pragma once

#include "offline/NDOPResponseData.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace NDocsOfflinePage {

/** Names one run of a document's server requests. */
struct NRunIdentity
{
    QString connId;
    QString injectId;
    QString fileId;
    QString officeType;
};

/**
 * What one run keeps with the resource manager: its injection record and the replies that it fetched. All of
 * it goes with this object. User-interface thread.
 */
class NRunData
{
public:
    /** `url` is the page's. */
    NRunData(NRunIdentity identity, const QString& url);
    ~NRunData();
    NRunData(const NRunData&) = delete;
    NRunData& operator=(const NRunData&) = delete;

    const NRunIdentity& identity() const { return m_identity; }
    /** Takes what an earlier run learned of the same document's local package. */
    void copyLocalData(const NRunData& earlier);
    /** Nothing will be fetched: whoever asks for a reply gets an empty one at once. */
    void expectNothing();
    /** By reply name; none before it came. */
    std::optional<NDOPResponseData> reply(const QString& kind) const;

private:
    NRunIdentity m_identity;
};

/** The names of the replies that are fetched for the browser. */
QStringList prefetchedReplies();

} // namespace NDocsOfflinePage
