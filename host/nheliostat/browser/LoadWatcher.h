#pragma once

#include "nheliostat/browser/NetErrors.h"

#include <QHash>
#include <QObject>
#include <QTimer>
#include <QUrl>

#include <optional>

class QWebEnginePage;
struct GatewayRequestRecord;

namespace nheliostat::browser {

/**
 * Tells how the loads of a page's main frame end. User-interface thread.
 *
 * Chromium reports a download, a cancelled navigation, an error status with a body and an error page alike as
 * "not ok"; what the main frame shows afterwards, and what the gateway said, tell them apart.
 */
class LoadWatcher final : public QObject
{
    Q_OBJECT
public:
    /** The page outlives the watcher. */
    explicit LoadWatcher(QWebEnginePage& page, QObject* parent = nullptr);

    /** What the gateway made of a request of the view. */
    void noteRequest(const GatewayRequestRecord& record);
    /** The renderer is gone: the load under way never ends. */
    void forgetLoad();

Q_SIGNALS:
    /** Nothing could be shown; comes before `ended(false)`. */
    void failed(const QUrl& url, const nheliostat::browser::NetError& error);
    /** A document is shown; false for an error page and for a document that came with an error status. */
    void ended(bool ok);
    /** The load came to nothing: the document shown before stays. */
    void abandoned();

private:
    void begin();
    void finish(bool ok);
    void judge(const QVariantMap& shown);
    void learn(const QVariantMap& shown);
    bool hasRecord() const;
    void judgeStatusDocument();

    QWebEnginePage& m_page;
    double m_shownSince = 0; //!< when the document that is shown began, as it says itself
    int m_load = 0;
    QHash<QUrl, std::optional<NetError>> m_recorded; //!< the load's requests; with the error of those not got
    QTimer m_recordWait; //!< runs while a document with an error status waits for its request's record
};

} // namespace nheliostat::browser
