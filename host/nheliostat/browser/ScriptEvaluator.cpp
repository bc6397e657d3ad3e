#include "nheliostat/browser/ScriptEvaluator.h"

#include "nheliostat/browser/ScriptText.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QPointer>
#include <QTimer>
#include <QVariant>
#include <QWebEnginePage>
#include <QWebEngineScript>

namespace nheliostat::browser {

namespace {

constexpr int firstPollMs = 2;
constexpr int slowestPollMs = 20;

BrowserControl::Evaluation outcomeFromJson(const QString& json)
{
    const QJsonObject outcome = QJsonDocument::fromJson(json.toUtf8()).object();
    if (outcome.contains(QLatin1String("value")))
        return {outcome.value(QLatin1String("value")), QString()};
    const QString error = outcome.value(QLatin1String("error")).toString();
    return {QJsonValue(), error.isEmpty() ? QStringLiteral("unreadable outcome") : error};
}

} // namespace

ScriptEvaluator::ScriptEvaluator(QWebEnginePage& page, QObject* parent)
    : QObject(parent)
    , m_page(page)
{
}

ScriptEvaluator::~ScriptEvaluator()
{
    abandonOpen(QStringLiteral("the web view was closed"));
}

void ScriptEvaluator::evaluate(const QString& code, int timeoutMs, Done done)
{
    const int id = ++m_lastId;
    m_open.insert(id, std::move(done));
    QTimer::singleShot(qMax(0, timeoutMs), this, [this, id] {
        end(id, {QJsonValue(), QStringLiteral("the time is over"), true});
    });
    start(id, code);
}

void ScriptEvaluator::checkOpen()
{
    const QList<int> ids = m_open.keys();
    for (const int id : ids)
        poll(id, slowestPollMs);
}

void ScriptEvaluator::abandonOpen(const QString& error)
{
    const QList<int> ids = m_open.keys();
    for (const int id : ids)
        end(id, {QJsonValue(), error});
}

void ScriptEvaluator::start(int id, const QString& code)
{
    const QPointer<ScriptEvaluator> self(this);
    m_page.runJavaScript(
        evaluationText(id, code), QWebEngineScript::MainWorld, [self, id](const QVariant& started) {
            if (!self)
                return;
            if (started.toBool())
                self->poll(id, firstPollMs);
            else
                self->end(
                    id, {QJsonValue(), QStringLiteral("the code does not compile or the document is gone")});
        });
}

void ScriptEvaluator::poll(int id, int nextDelayMs)
{
    if (!m_open.contains(id))
        return;
    const QPointer<ScriptEvaluator> self(this);
    const auto take = [self, id, nextDelayMs](const QVariant& answer) {
        if (self)
            self->takePolled(id, answer.toString(), nextDelayMs);
    };
    m_page.runJavaScript(evaluationPollText(id), QWebEngineScript::MainWorld, take);
}

void ScriptEvaluator::takePolled(int id, const QString& answer, int nextDelayMs)
{
    if (answer == QLatin1String("running")) {
        const int followingMs = qMin(nextDelayMs * 2, slowestPollMs);
        QTimer::singleShot(nextDelayMs, this, [this, id, followingMs] { poll(id, followingMs); });
    } else if (answer.isEmpty() || answer == QLatin1String("gone")) {
        end(id, {QJsonValue(), QStringLiteral("the document is gone")});
    } else {
        end(id, outcomeFromJson(answer));
    }
}

void ScriptEvaluator::end(int id, const BrowserControl::Evaluation& outcome)
{
    if (const Done done = m_open.take(id))
        done(outcome);
}

} // namespace nheliostat::browser
