#include "shell/pages/PageWatch.h"

#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nheliostat/NHelioSubPage.h"

#include <QEvent>

namespace shell {

NHelioBrowserWidgetBase* browserOf(const NHelioAppPage* page)
{
    return page->findChild<NHelioBrowserWidgetBase*>();
}

PageWatch::PageWatch(int id, NHelioAppPage* page)
    : m_id(id)
    , m_page(page)
    , m_watched(page)
{
    if (NHelioSubPage* subPage = page->initialSubPage())
        connect(subPage, &NHelioSubPage::windowTitleChanged, this, &PageWatch::onTitleChanged);
    page->installEventFilter(this);
    findBrowser();
}

NHelioAppPage* PageWatch::page() const
{
    return m_page;
}

bool PageWatch::eventFilter(QObject* watched, QEvent* event)
{
    // A child that is being constructed is no browser yet: look once it is complete.
    if (watched == m_watched && event->type() == QEvent::ChildAdded && !m_browser)
        QMetaObject::invokeMethod(this, &PageWatch::findBrowser, Qt::QueuedConnection);
    return QObject::eventFilter(watched, event);
}

void PageWatch::findBrowser()
{
    NHelioBrowserWidgetBase* browser = m_page ? browserOf(m_page) : nullptr;
    if (!browser || browser == m_browser)
        return;
    m_browser = browser;
    connect(browser, &NHelioBrowserWidgetBase::loadFinished, this, &PageWatch::onLoadFinished);
    connect(browser, &NHelioBrowserWidgetBase::webFileReady, this, &PageWatch::onWebFileReady);
}

void PageWatch::onTitleChanged()
{
    Q_EMIT happened(m_id, QStringLiteral("titleChanged"));
}

void PageWatch::onLoadFinished()
{
    Q_EMIT happened(m_id, QStringLiteral("loadFinished"));
}

void PageWatch::onWebFileReady()
{
    Q_EMIT happened(m_id, QStringLiteral("webFileReady"));
}

} // namespace shell
