#include "nheliostat/framework/LeaveRequest.h"

#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nheliostat/NHelioSubPage.h"
#include "nheliostat/framework/LeaveQuestion.h"
#include "zeolite/NxLoggerLite.h"

#include <QMessageBox>

#include <algorithm>
#include <utility>

namespace {

QString titleOf(const NHelioAppPage* page)
{
    const NHelioSubPage* subPage = page->initialSubPage();
    const QString title = subPage ? subPage->windowTitle() : QString();
    return title.isEmpty() ? page->pageTitle() : title;
}

/** What the question is about is in sight. */
void bringToFront(const NHelioAppPage* page)
{
    if (NHelioSubPage* subPage = page->isVisible() ? nullptr : page->initialSubPage())
        subPage->activate({}, true);
}

} // namespace

nheliostat::host::DocumentGuard* documentGuardOf(const NHelioAppPage* page)
{
    auto* guard =
        page ? dynamic_cast<nheliostat::host::DocumentGuard*>(page->findChild<NHelioBrowserWidgetBase*>())
             : nullptr;
    return guard && guard->hasDocument() ? guard : nullptr;
}

LeaveRequest::LeaveRequest(const QVector<NHelioAppPage*>& pages, Purpose purpose, Manner manner, Done done,
                           QObject* parent)
    : QObject(parent)
    , m_purpose(purpose)
    , m_manner(manner)
    , m_done(std::move(done))
{
    for (NHelioAppPage* page : pages)
        m_subjects.push_back({page});
}

LeaveRequest::~LeaveRequest()
{
    m_done = {};
    delete m_question;
}

void LeaveRequest::start()
{
    const QPointer<LeaveRequest> self(this);
    bool hasDocuments = false;
    for (std::size_t index = 0; self && index < m_subjects.size(); ++index) {
        const auto take = [self, index](Answer answer) {
            if (self)
                self->takeAnswer(index, answer);
        };
        auto* guard = documentGuardOf(m_subjects[index].page);
        hasDocuments = hasDocuments || guard;
        if (guard)
            guard->askDocument(take);
        else
            m_subjects[index].state = State::Agreed;
    }
    if (self && !hasDocuments)
        decide();
}

void LeaveRequest::takeAnswer(std::size_t index, Answer answer)
{
    m_subjects[index].state = answer == Answer::Agrees    ? State::Agreed
                              : answer == Answer::Objects ? State::Objected
                                                          : State::Silent;
    // Later: whoever began to ask may be in the middle of it.
    if (isSettled())
        QMetaObject::invokeMethod(this, &LeaveRequest::decide, Qt::QueuedConnection);
}

bool LeaveRequest::isSettled() const
{
    return std::none_of(m_subjects.begin(), m_subjects.end(),
                        [](const Subject& each) { return each.page && each.state == State::Asking; });
}

void LeaveRequest::decide()
{
    if (!m_done || m_question || m_isClosing || !isSettled())
        return;
    QVector<const Subject*> holdouts;
    for (Subject& each : m_subjects) {
        const bool holdsOut = each.state == State::Objected || each.state == State::Silent;
        if (!each.page || !holdsOut || each.regardless)
            continue;
        if (m_manner == Manner::Ask) {
            holdouts.append(&each);
            continue;
        }
        each.regardless = true;
        NxLoggerLite::writeWarning(QStringLiteral("nheliostat"),
                                   QStringLiteral("closed with unsaved changes: %1").arg(titleOf(each.page)));
    }
    if (holdouts.isEmpty())
        closeDocuments();
    else
        askUser(holdouts);
}

void LeaveRequest::askUser(const QVector<const Subject*>& holdouts)
{
    QVector<LeaveQuestion::Document> documents;
    for (const Subject* each : holdouts)
        documents.append({titleOf(each->page), each->state == State::Objected});
    const NHelioAppPage* first = holdouts.constFirst()->page;
    bringToFront(first);
    m_wasAsked = true;
    m_question = LeaveQuestion::make(documents, m_purpose == Purpose::Restart, first->window());
    connect(m_question, &QMessageBox::finished, this,
            [this](int answer) { onUserAnswered(answer == LeaveQuestion::leave); });
    // Its window may go, and takes it along.
    connect(m_question, &QObject::destroyed, this, [this] { end(false); });
    m_question->open();
}

void LeaveRequest::onUserAnswered(bool leaves)
{
    if (!m_question)
        return;
    m_question->disconnect(this);
    m_question.clear();
    if (!leaves)
        return end(false);
    for (Subject& each : m_subjects)
        each.regardless = each.regardless || each.state == State::Objected || each.state == State::Silent;
    closeDocuments();
}

void LeaveRequest::closeDocuments()
{
    if (m_purpose == Purpose::Restart)
        return end(true);
    m_isClosing = true;
    const QPointer<LeaveRequest> self(this);
    std::vector<std::size_t> closing;
    for (std::size_t index = 0; index < m_subjects.size(); ++index) {
        Subject& each = m_subjects[index];
        // One that does not answer cannot be asked to close either.
        const bool isAsked = each.page && each.state != State::Silent && each.state != State::Closed &&
                             documentGuardOf(each.page);
        each.state = isAsked ? State::Asking : State::Closed;
        if (isAsked)
            closing.push_back(index);
    }
    for (const std::size_t index : closing) {
        auto* guard = self ? documentGuardOf(m_subjects[index].page) : nullptr;
        const auto take = [self, index](Answer answer) {
            if (self)
                self->takeClosed(index, answer);
        };
        if (guard)
            guard->closeDocument(m_subjects[index].regardless, take);
        else if (self)
            take(Answer::Agrees);
    }
    if (self && closing.empty())
        end(true);
}

void LeaveRequest::takeClosed(std::size_t index, Answer answer)
{
    m_subjects[index].state = answer == Answer::Objects ? State::Objected : State::Closed;
    if (!isSettled())
        return;
    m_isClosing = false;
    const bool areAllClosed = std::all_of(m_subjects.begin(), m_subjects.end(), [](const Subject& each) {
        return !each.page || each.state == State::Closed;
    });
    // Words were typed since the documents were asked.
    if (areAllClosed)
        QMetaObject::invokeMethod(
            this, [this] { end(true); }, Qt::QueuedConnection);
    else
        QMetaObject::invokeMethod(this, &LeaveRequest::decide, Qt::QueuedConnection);
}

void LeaveRequest::cancel()
{
    if (!m_isClosing)
        end(false);
}

void LeaveRequest::end(bool all)
{
    const Done done = std::exchange(m_done, {});
    if (!done)
        return;
    QVector<NHelioAppPage*> pages;
    for (const Subject& each : m_subjects) {
        if (each.page && (all || each.state == State::Closed))
            pages.append(each.page);
    }
    deleteLater();
    done(all, pages);
}
