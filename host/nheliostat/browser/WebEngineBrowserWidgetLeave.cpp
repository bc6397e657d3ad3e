#include "nheliostat/browser/BrowserEnvironment.h"
#include "nheliostat/browser/WebEngineBrowserWidget.h"
#include "nheliostat/browser/WebViewContainer.h"

#include <utility>

// What would be lost with a browser's document, and how it is left.

namespace nheliostat::browser {

void WebEngineBrowserWidget::takeUnsavedChanges(bool unsaved)
{
    m_reportedSinceStart = true;
    m_holdsUnsaved = unsaved;
}

bool WebEngineBrowserWidget::isDiscardable() const
{
    return !m_holdsUnsaved && !hasActivity();
}

bool WebEngineBrowserWidget::hasActivity() const
{
    return m_next || (m_container && m_container->isBusyWithUser());
}

bool WebEngineBrowserWidget::hasDocument() const
{
    return m_container && m_container->hasDocument();
}

void WebEngineBrowserWidget::askDocument(Done done)
{
    if (m_container)
        m_container->askDocument(std::move(done));
    else
        done(Answer::Agrees);
}

void WebEngineBrowserWidget::closeDocument(bool regardless, Done done)
{
    // One that was loaded in advance goes back to where it came from.
    if (m_container && !m_isPrepared)
        m_container->closeDocument(regardless, std::move(done));
    else
        done(Answer::Agrees);
}

void WebEngineBrowserWidget::allowLeaving()
{
    m_mayLeave = true;
    if (m_container)
        m_container->allowLeaving();
}

void WebEngineBrowserWidget::leaveFor(std::function<void()> next)
{
    if (!m_holdsUnsaved || m_mayLeave || !hasDocument() || !m_environment)
        return next();
    // What was asked for last counts, and the user is asked once.
    if (std::exchange(m_next, std::move(next)))
        return;
    const QPointer<WebEngineBrowserWidget> self(this);
    m_environment->askToLeave(this, [self](bool leaves) {
        const auto wanted = self ? std::exchange(self->m_next, nullptr) : nullptr;
        if (!wanted || !leaves)
            return;
        self->allowLeaving();
        wanted();
    });
}

} // namespace nheliostat::browser
