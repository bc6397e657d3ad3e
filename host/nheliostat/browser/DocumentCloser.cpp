#include "nheliostat/browser/DocumentCloser.h"

#include "nheliostat/browser/BrowserWebPage.h"
#include "nheliostat/browser/ScriptEvaluator.h"
#include "nheliostat/browser/ScriptText.h"

#include <QPointer>

#include <utility>

namespace nheliostat::browser {

namespace {

using Answer = DocumentCloser::Answer;
using Guard = host::DocumentGuard;

/** A document that is gone, or whose question fails in it, has nothing to say. */
Answer answerOf(const BrowserControl::Evaluation& outcome)
{
    if (outcome.timedOut)
        return Answer::Silent;
    return outcome.error.isEmpty() && !outcome.value.toBool(true) ? Answer::Objects : Answer::Agrees;
}

void tellAll(std::vector<DocumentCloser::Done> listeners, Answer answer)
{
    for (const DocumentCloser::Done& listener : listeners)
        listener(answer);
}

} // namespace

DocumentCloser::DocumentCloser(BrowserWebPage& page, ScriptEvaluator& evaluator, QObject* parent)
    : QObject(parent)
    , m_page(page)
    , m_evaluator(evaluator)
{
    connect(&page, &QWebEnginePage::windowCloseRequested, this, &DocumentCloser::onCloseRequested);
    // Later: the browser is in the middle of its question.
    connect(
        &page, &BrowserWebPage::leavingRefused, this, [this] { endClosing(Answer::Objects); },
        Qt::QueuedConnection);
    m_closingLimit.setSingleShot(true);
    m_closingLimit.setInterval(Guard::closingLimit);
    connect(&m_closingLimit, &QTimer::timeout, this, [this] { endClosing(Answer::Agrees); });
}

DocumentCloser::~DocumentCloser()
{
    endAll();
}

void DocumentCloser::ask(Done done)
{
    m_asking.push_back(std::move(done));
    if (m_asking.size() > 1)
        return;
    const QPointer<DocumentCloser> self(this);
    m_evaluator.evaluate(documentQuestionText(), static_cast<int>(Guard::savingLimit.count()),
                         [self](const BrowserControl::Evaluation& outcome) {
                             if (!self)
                                 return;
                             if (outcome.timedOut)
                                 self->askState();
                             else
                                 self->endAsking(answerOf(outcome));
                         });
}

void DocumentCloser::askState()
{
    if (!isAsking())
        return;
    const QPointer<DocumentCloser> self(this);
    m_evaluator.evaluate(documentStateText(), static_cast<int>(Guard::answerLimit.count()),
                         [self](const BrowserControl::Evaluation& outcome) {
                             if (self)
                                 self->endAsking(answerOf(outcome));
                         });
}

void DocumentCloser::close(bool regardless, Done done)
{
    m_closing.push_back(std::move(done));
    if (m_closing.size() > 1)
        return;
    m_page.setLeaving(regardless ? BrowserWebPage::Leaving::Allowed : BrowserWebPage::Leaving::Refused);
    m_closingLimit.start();
    m_page.triggerAction(QWebEnginePage::RequestClose);
}

void DocumentCloser::endAll()
{
    endAsking(Answer::Agrees);
    endClosing(Answer::Agrees);
}

void DocumentCloser::endAsking(Answer answer)
{
    tellAll(std::exchange(m_asking, {}), answer);
}

void DocumentCloser::onCloseRequested()
{
    if (m_closing.empty())
        Q_EMIT closedByItself();
    else
        endClosing(Answer::Agrees);
}

void DocumentCloser::endClosing(Answer answer)
{
    if (m_closing.empty())
        return;
    m_closingLimit.stop();
    m_page.setLeaving(BrowserWebPage::Leaving::Asked);
    tellAll(std::exchange(m_closing, {}), answer);
}

} // namespace nheliostat::browser
