#include "nheliostat/browser/LoadWatcher.h"

#include "nheliostat/browser/ScriptText.h"
#include "nheliostat/gateway/RequestGateway.h"

#include <QPointer>
#include <QVariantMap>
#include <QWebEnginePage>
#include <QWebEngineScript>

namespace nheliostat::browser {

namespace {

constexpr int badGateway = 502;

/** The record of a request may come a little later than the end of the load. */
constexpr int recordWaitMs = 500;

std::optional<NetError> errorOf(const GatewayRequestRecord& record)
{
    if (record.status != badGateway || record.by == GatewayRequestRecord::AnsweredBy::Local)
        return {};
    const bool isRefused = record.by == GatewayRequestRecord::AnsweredBy::Refused;
    return netErrorFromText(isRefused ? QStringLiteral("ERR_EMPTY_RESPONSE")
                                      : QStringLiteral("ERR_CONNECTION_FAILED"));
}

} // namespace

LoadWatcher::LoadWatcher(QWebEnginePage& page, QObject* parent)
    : QObject(parent)
    , m_page(page)
{
    connect(&page, &QWebEnginePage::loadStarted, this, &LoadWatcher::begin);
    connect(&page, &QWebEnginePage::loadFinished, this, &LoadWatcher::finish);
    m_recordWait.setSingleShot(true);
    m_recordWait.setInterval(recordWaitMs);
    connect(&m_recordWait, &QTimer::timeout, this, &LoadWatcher::judgeStatusDocument);
}

void LoadWatcher::noteRequest(const GatewayRequestRecord& record)
{
    m_recorded.insert(record.url, errorOf(record));
    if (m_recordWait.isActive() && hasRecord())
        judgeStatusDocument();
}

void LoadWatcher::forgetLoad()
{
    ++m_load;
    m_recordWait.stop();
}

void LoadWatcher::begin()
{
    forgetLoad();
    m_recorded.clear();
}

void LoadWatcher::finish(bool ok)
{
    const QPointer<LoadWatcher> self(this);
    const int load = m_load;
    m_page.runJavaScript(loadProbeText(), QWebEngineScript::ApplicationWorld,
                         [self, load, ok](const QVariant& shown) {
                             if (!self || load != self->m_load)
                                 return;
                             if (ok)
                                 self->learn(shown.toMap());
                             else
                                 self->judge(shown.toMap());
                         });
    if (ok)
        Q_EMIT ended(true);
}

void LoadWatcher::learn(const QVariantMap& shown)
{
    m_shownSince = shown.value(QStringLiteral("began")).toDouble();
}

void LoadWatcher::judge(const QVariantMap& shown)
{
    const double before = m_shownSince;
    learn(shown);
    if (m_page.url().isEmpty() || qFuzzyCompare(before, m_shownSince)) {
        Q_EMIT abandoned();
        return;
    }
    if (shown.value(QStringLiteral("isErrorPage")).toBool()) {
        Q_EMIT failed(m_page.requestedUrl(),
                      netErrorFromText(shown.value(QStringLiteral("error")).toString()));
        Q_EMIT ended(false);
    } else if (hasRecord()) {
        judgeStatusDocument();
    } else {
        m_recordWait.start();
    }
}

bool LoadWatcher::hasRecord() const
{
    return m_recorded.contains(m_page.url().adjusted(QUrl::RemoveFragment));
}

void LoadWatcher::judgeStatusDocument()
{
    m_recordWait.stop();
    const std::optional<NetError> error = m_recorded.value(m_page.url().adjusted(QUrl::RemoveFragment));
    if (error)
        Q_EMIT failed(m_page.requestedUrl(), *error);
    Q_EMIT ended(false);
}

} // namespace nheliostat::browser
