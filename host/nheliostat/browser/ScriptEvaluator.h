#pragma once

#include "nheliostat/BrowserControl.h"

#include <QHash>
#include <QObject>

class QWebEnginePage;

namespace nheliostat::browser {

/**
 * Runs code in the main frame of a page and fetches what it returns. Every evaluation ends exactly once.
 * User-interface thread.
 */
class ScriptEvaluator final : public QObject
{
    Q_OBJECT
public:
    using Done = std::function<void(const BrowserControl::Evaluation&)>;

    /** The page outlives the evaluator. */
    explicit ScriptEvaluator(QWebEnginePage& page, QObject* parent = nullptr);
    /** Ends the open evaluations with an error. */
    ~ScriptEvaluator() override;

    void evaluate(const QString& code, int timeoutMs, Done done);
    /** Asks at once how the open evaluations stand; those of an earlier document end with an error. */
    void checkOpen();
    /** Ends the open evaluations with this error. */
    void abandonOpen(const QString& error);

private:
    void start(int id, const QString& code);
    void poll(int id, int nextDelayMs);
    void takePolled(int id, const QString& answer, int nextDelayMs);
    void end(int id, const BrowserControl::Evaluation& outcome);

    QWebEnginePage& m_page;
    QHash<int, Done> m_open;
    int m_lastId = 0;
};

} // namespace nheliostat::browser
