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

} // namespace

LoadWatcher::LoadWatcher(QWebEnginePage& page, QObject* parent)
    : QObject(parent)
    , m_page(page)
{
    connect(&page, &QWebEnginePage::loadStarted, this, &LoadWatcher::begin);
    connect(&page, &QWebEnginePage::loadFinished, this, &LoadWatcher::finish);
}

void LoadWatcher::noteRequest(const GatewayRequestRecord& record)
{
    if (record.status != badGateway || record.by == GatewayRequestRecord::AnsweredBy::Local)
        return;
    m_failedUrl = record.url;
    m_gatewayError = record.by == GatewayRequestRecord::AnsweredBy::Refused
                         ? netErrorFromText(QStringLiteral("ERR_EMPTY_RESPONSE"))
                         : netErrorFromText(QStringLiteral("ERR_CONNECTION_FAILED"));
}

void LoadWatcher::forgetLoad()
{
    ++m_load;
}

void LoadWatcher::begin()
{
    ++m_load;
    m_failedUrl.clear();
    m_gatewayError.reset();
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
    const QUrl url = m_page.requestedUrl();
    if (shown.value(QStringLiteral("isErrorPage")).toBool())
        Q_EMIT failed(url, netErrorFromText(shown.value(QStringLiteral("error")).toString()));
    else if (m_gatewayError && m_failedUrl == url.adjusted(QUrl::RemoveFragment))
        Q_EMIT failed(url, *m_gatewayError);
    Q_EMIT ended(false);
}

} // namespace nheliostat::browser
