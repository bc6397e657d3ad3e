#pragma once

#include "nheliostat/BrowserControl.h"
#include "nheliostat/DocumentGuard.h"

#include <QObject>
#include <QTimer>

#include <vector>

namespace nheliostat::browser {

class BrowserWebPage;
class ScriptEvaluator;

/**
 * Asks the document of a page whether it may end, and has the browser close it. Does what DocumentGuard says
 * of both. User-interface thread.
 */
class DocumentCloser final : public QObject
{
    Q_OBJECT
public:
    using Answer = host::DocumentGuard::Answer;
    using Done = host::DocumentGuard::Done;

    /** Page and evaluator outlive the closer. */
    DocumentCloser(BrowserWebPage& page, ScriptEvaluator& evaluator, QObject* parent = nullptr);
    /** What is open ends with `Agrees`: there is no document any more. */
    ~DocumentCloser() override;

    void ask(Done done);
    void close(bool regardless, Done done);
    bool isAsking() const { return !m_asking.empty(); }
    bool isClosing() const { return !m_closing.empty(); }
    /** The renderer process ended. */
    void endAll();

Q_SIGNALS:
    /** The document closes itself, without having been asked to. */
    void closedByItself();

private:
    void askState();
    void endAsking(Answer answer);
    void onCloseRequested();
    void endClosing(Answer answer);

    BrowserWebPage& m_page;
    ScriptEvaluator& m_evaluator;
    std::vector<Done> m_asking;
    std::vector<Done> m_closing;
    QTimer m_closingLimit;
};

} // namespace nheliostat::browser
