#include "nheliostat/browser/WebEngineBrowserWidget.h"

#include "nheliostat/browser/BrowserEnvironment.h"
#include "nheliostat/browser/LoadingCover.h"
#include "nheliostat/browser/ResourceRegistrations.h"
#include "nheliostat/browser/TakeOverWatch.h"
#include "nheliostat/browser/WebViewContainer.h"
#include "nrt/NSettings.h"
#include "zeolite/NxLoggerLite.h"

#include <QGridLayout>
#include <QWebEnginePage>

// Where the view of a browser comes from and where it goes: views that were made in advance, and given back.

namespace nheliostat::browser {

namespace {

/** Which browser shows which view. */
constexpr const char* browserProperty = "nheliostatBrowser";

/** What the deployment allows a document that was loaded in advance, in milliseconds. */
TakeOverWatch::Limits takeOverLimits()
{
    TakeOverWatch::Limits limits;
    nrt::NCCCommonSettings settings;
    settings.beginGroup(QStringLiteral("takeOver"));
    limits.script = settings.value(QStringLiteral("scriptMs"), limits.script).toInt();
    limits.answer = settings.value(QStringLiteral("answerMs"), limits.answer).toInt();
    limits.document = settings.value(QStringLiteral("documentMs"), limits.document).toInt();
    return limits;
}

} // namespace

WebEngineBrowserWidget* WebEngineBrowserWidget::browserOf(const WebViewContainer* view)
{
    return qobject_cast<WebEngineBrowserWidget*>(view->property(browserProperty).value<QObject*>());
}

void WebEngineBrowserWidget::setBrowserOf(WebViewContainer& view, WebEngineBrowserWidget* browser)
{
    view.setProperty(browserProperty, browser ? QVariant::fromValue<QObject*>(browser) : QVariant());
}

WebViewContainer* WebEngineBrowserWidget::takeOrMakeView()
{
    QWebEngineProfile* const profile =
        m_environment->profile(property("cachePath").toString(), property("cookiePath").toString());
    const QPointer<WebViewContainer> prepared = std::exchange(m_prepared, nullptr);
    m_isPrepared = false;
    if (!prepared || !prepared->page() || prepared->page()->profile() != profile) {
        if (prepared)
            prepared->destroyLater();
        return new WebViewContainer(*m_environment, profile, m_resources, m_stage);
    }
    prepared->resources()->add(*m_resources);
    m_resources = prepared->resources();
    prepared->putToUse();
    m_isPrepared = true;
    watchTakeOver();
    return prepared;
}

void WebEngineBrowserWidget::setPreparedView(WebViewContainer* view)
{
    m_prepared = view;
    view->hide();
    view->setParent(m_stage);
}

void WebEngineBrowserWidget::letGoOfView()
{
    if (!m_container)
        return;
    m_container->disconnect(this);
    if (page())
        page()->disconnect(this);
    setBrowserOf(*m_container, nullptr);
    m_layers->removeWidget(m_container);
    setFocusProxy(nullptr);
    m_container.clear();
    m_holdsUnsaved = false;
    m_resources = std::make_shared<ResourceRegistrations>();
    delete std::exchange(m_takeOver, nullptr);
}

void WebEngineBrowserWidget::watchTakeOver()
{
    m_takeOver = new TakeOverWatch(takeOverLimits(), this);
    connect(m_takeOver, &TakeOverWatch::failed, this, &WebEngineBrowserWidget::giveUpTakeOver);
    connect(m_takeOver, &TakeOverWatch::shown, m_cover, &QWidget::hide);
}

void WebEngineBrowserWidget::giveUpTakeOver()
{
    NxLoggerLite::writeWarning(QStringLiteral("Browser"),
                               QStringLiteral("the page that was loaded in advance does not answer"));
    // It may hang: a load in the same process would wait for it.
    if (!crashRenderer())
        takeCrash();
}

} // namespace nheliostat::browser
