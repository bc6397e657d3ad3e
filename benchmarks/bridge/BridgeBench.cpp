#include "BridgeBench.h"

#include "BenchObject.h"
#include "zeolite/NxWebViewContainer.h"

#include <QHBoxLayout>

#include <algorithm>

namespace {

const QString inFlight = QStringLiteral("inFlight");
const QString site = QStringLiteral("https://docs.skyleaf.test/");

double median(QVector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.isEmpty() ? 0 : values[values.size() / 2];
}

/** Milliseconds per call, of `count` calls one after the other. */
QString inTurn(int count, const QString& call)
{
    return QStringLiteral("const begun = performance.now();"
                          "for (let i = 0; i < %1; ++i) { const got = await %2;"
                          "  if (!got) throw new Error('no reply'); }"
                          "return (performance.now() - begun) / %1;")
        .arg(count)
        .arg(call);
}

QString bareCall(const QString& call)
{
    return QStringLiteral("new Promise((done) => echo.%1, done))").arg(call);
}

} // namespace

BridgeBench::BridgeBench(nheliostat::browser::BrowserEnvironment& environment, int runs)
{
    using nheliostat::browser::WebEngineBrowserWidget;
    new QHBoxLayout(&m_window);
    m_browser = new WebEngineBrowserWidget(environment, {}, {}, &m_window);
    m_bare = new BarePage(&m_window);
    m_window.layout()->addWidget(m_browser);
    connect(m_browser, &NHelioBrowserWidgetBase::creatingApi, this, &BridgeBench::makeScriptObject);
    connect(m_browser, &NHelioBrowserWidgetBase::loadFinished, this, &BridgeBench::beginWhenLoaded);
    connect(m_bare, &BarePage::loaded, this, &BridgeBench::beginWhenLoaded);
    m_browser->addLocalResourceCache(
        {{site, [](const IWebViewResourceProviderCallbackPtr& request) {
              request->complete({{QStringLiteral("resourceData"), QByteArray("<p>bench</p>")}});
              return true;
          }}});
    const struct
    {
        QString name;
        int count;
        QString method;
        int size;
    } kinds[] = {{QStringLiteral("trivial"), 1000, QStringLiteral("ping"), 0},
                 {QStringLiteral("reply1MiB"), 5, QStringLiteral("produce"), 1 << 20},
                 {QStringLiteral("reply16MiB"), 1, QStringLiteral("produce"), 16 << 20}};
    const QString inFlightCode = QStringLiteral(
        "const begun = performance.now(); const replies = await Promise.all(Array.from({length: 1000},"
        " (_, i) => helio.call('ping', {text: String(i)})));"
        "replies.forEach((reply, i) => { if (reply.text !== String(i)) throw new Error('wrong reply'); });"
        "return performance.now() - begun;");
    // One run more than asked for: the first warms up and is not counted.
    for (int run = 0; run <= runs; ++run) {
        for (const auto& kind : kinds) {
            const QString bare =
                kind.size ? QStringLiteral("produce(%1").arg(kind.size) : QStringLiteral("ping('hello'");
            const QString helio = kind.size
                                      ? QStringLiteral("helio.call('produce', {size: %1})").arg(kind.size)
                                      : QStringLiteral("helio.call('ping', {text: 'hello'})");
            m_steps.append({kind.name, false, inTurn(kind.count, bareCall(bare))});
            m_steps.append({kind.name, true, inTurn(kind.count, helio)});
        }
        m_steps.append({inFlight, true, inFlightCode});
    }
    m_heart.setTimerType(Qt::PreciseTimer);
    m_heart.setInterval(1);
    connect(&m_heart, &QTimer::timeout, this, &BridgeBench::beat);
}

void BridgeBench::start()
{
    m_window.resize(800, 600);
    m_window.show();
    m_browser->initWebView();
    m_browser->load(QUrl(site));
    m_bare->load();
}

void BridgeBench::makeScriptObject(NxWebViewContainer* container, QObject** object)
{
    *object = new BenchObject(container);
}

void BridgeBench::beginWhenLoaded()
{
    if (++m_loads == 2)
        QTimer::singleShot(500, this, &BridgeBench::runNext);
}

void BridgeBench::runNext()
{
    if (m_next == m_steps.size()) {
        Q_EMIT finished(report());
        return;
    }
    const Step step = m_steps[m_next++];
    m_longestHoldMs = 0;
    m_sinceBeat.start();
    m_heart.start();
    const auto done = [this, step](const BrowserControl::Evaluation& outcome) { take(step, outcome); };
    if (step.isHelio)
        m_browser->evaluate(step.code, 120000, done);
    else
        m_bare->evaluator().evaluate(step.code, 120000, done);
}

void BridgeBench::take(const Step& step, const BrowserControl::Evaluation& outcome)
{
    m_heart.stop();
    if (!outcome.error.isEmpty()) {
        Q_EMIT failed(step.name + QLatin1String(": ") + outcome.error);
        return;
    }
    const int stepsPerRun = 7;
    if (m_next > stepsPerRun) {
        const QString side = step.isHelio ? QStringLiteral(" helio") : QStringLiteral(" bare");
        m_samples[step.name + side].append(outcome.value.toDouble());
        m_samples[step.name + side + QStringLiteral(" hold")].append(m_longestHoldMs);
    }
    QTimer::singleShot(50, this, &BridgeBench::runNext);
}

void BridgeBench::beat()
{
    m_longestHoldMs = std::max(m_longestHoldMs, static_cast<double>(m_sinceBeat.nsecsElapsed()) / 1e6);
    m_sinceBeat.start();
}

QJsonObject BridgeBench::report() const
{
    QJsonObject result;
    for (const char* kind : {"trivial", "reply1MiB", "reply16MiB"}) {
        const QString name = QLatin1String(kind);
        const double bare = median(m_samples[name + QStringLiteral(" bare")]);
        const double helio = median(m_samples[name + QStringLiteral(" helio")]);
        const double bareHold = median(m_samples[name + QStringLiteral(" bare hold")]);
        const double helioHold = median(m_samples[name + QStringLiteral(" helio hold")]);
        result[name] = QJsonObject{{QStringLiteral("bareMs"), bare},
                                   {QStringLiteral("helioMs"), helio},
                                   {QStringLiteral("ratio"), helio / bare},
                                   {QStringLiteral("bareHoldMs"), bareHold},
                                   {QStringLiteral("helioHoldMs"), helioHold}};
    }
    const QVector<double> holds = m_samples[inFlight + QStringLiteral(" helio hold")];
    result[inFlight] =
        QJsonObject{{QStringLiteral("calls"), 1000},
                    {QStringLiteral("helioMs"), median(m_samples[inFlight + QStringLiteral(" helio")])},
                    {QStringLiteral("longestHoldMs"), *std::max_element(holds.begin(), holds.end())}};
    result[QStringLiteral("runs")] = holds.size();
    return result;
}
