#include "shell/control/PageMethods.h"

#include "shell/control/StateReport.h"
#include "shell/pages/MethodInvoker.h"
#include "shell/pages/PageDirectory.h"
#include "shell/pages/PageWatch.h"
#include "shell/pages/Screenshot.h"

#include "nheliostat/BrowserControl.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/NHelioPluginWidgetFactory.h"
#include "nheliostat/framework/ShellApplication.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellMainWindow.h"

#include <QPointer>

namespace shell {

namespace {

using rpc::Failure;
using rpc::Outcome;
using Type = rpc::Parameter::Type;

constexpr int defaultTimeoutMs = 30000;

/** A page may carry what its notify answers in this property. */
constexpr const char* notifyResultProperty = "notifyResult";

Failure failed(const QString& message)
{
    return {rpc::OperationFailed, message};
}

Failure noPage(const QJsonObject& params)
{
    return failed(QStringLiteral("no page %1").arg(params.value(QLatin1String("page")).toInt()));
}

rpc::Parameter pageParameter()
{
    return {QStringLiteral("page"), Type::Integer};
}

BrowserControl* browserControlOf(const NHelioAppPage& page)
{
    return dynamic_cast<BrowserControl*>(browserOf(&page));
}

QStringList toTexts(const QJsonValue& array)
{
    return array.toVariant().toStringList();
}

} // namespace

PageMethods::PageMethods(ShellApplication& application, PageDirectory& pages)
    : m_application(application)
    , m_pages(pages)
{
}

QVector<rpc::Method> PageMethods::methods()
{
    const rpc::Parameter args{QStringLiteral("args"), Type::TextList};
    const rpc::Parameter code{QStringLiteral("code"), Type::Text};
    const rpc::Parameter file{QStringLiteral("file"), Type::Text};
    const rpc::Parameter method{QStringLiteral("method"), Type::Text};
    const rpc::Parameter text{QStringLiteral("text"), Type::Text};
    const rpc::Parameter type{QStringLiteral("type"), Type::Integer};
    const rpc::Parameter anyArgs{QStringLiteral("args"), Type::Array, false};
    const rpc::Parameter timeout{QStringLiteral("timeoutMs"), Type::Integer, false};

    return {rpc::immediateMethod(QStringLiteral("page.create"), {type},
                                 [this](const QJsonObject& params) { return create(params); }),
            pageMethod(QStringLiteral("page.notify"), {text}, &PageMethods::notify),
            pageMethod(QStringLiteral("page.openFiles"), {args}, &PageMethods::openFiles),
            pageMethod(QStringLiteral("page.load"), {}, &PageMethods::load),
            pageMethod(QStringLiteral("page.release"), {}, &PageMethods::release),
            pageMethod(QStringLiteral("page.invoke"), {method, anyArgs}, &PageMethods::invoke),
            pageMethod(QStringLiteral("page.state"), {}, &PageMethods::state),
            pageMethod(QStringLiteral("page.screenshot"), {file}, &PageMethods::screenshot),
            pageMethod(QStringLiteral("browser.crash"), {}, &PageMethods::crash),
            {QStringLiteral("page.close"),
             {pageParameter()},
             [this](const QJsonObject& params, const rpc::Reply& reply) { close(params, reply); }},
            {QStringLiteral("page.evaluate"),
             {pageParameter(), code, timeout},
             [this](const QJsonObject& params, const rpc::Reply& reply) { evaluate(params, reply); }}};
}

rpc::Method PageMethods::pageMethod(const QString& name, QVector<rpc::Parameter> parameters,
                                    PageOperation operation)
{
    parameters.prepend(pageParameter());
    return rpc::immediateMethod(name, parameters, [this, operation](const QJsonObject& params) -> Outcome {
        NHelioAppPage* page = m_pages.find(params.value(QLatin1String("page")).toInt());
        return page ? (this->*operation)(*page, params) : noPage(params);
    });
}

Outcome PageMethods::create(const QJsonObject& params)
{
    const int type = params.value(QLatin1String("type")).toInt();
    const QVector<NHelioMainWindow*> windows = m_application.mainWindows();
    if (windows.isEmpty())
        return failed(QStringLiteral("no window is open"));
    if (!NHelioPluginWidgetFactory::findItem(type))
        return failed(QStringLiteral("no page type %1").arg(type));
    m_application.collectInfo().markOpenStarted();
    NHelioAppPage* page = windows.constFirst()->centralArea()->addPage(type, QString(), {});
    if (!page)
        return failed(QStringLiteral("the page of type %1 could not be created").arg(type));
    return QJsonValue(QJsonObject{{QStringLiteral("page"), m_pages.idOf(page)}});
}

Outcome PageMethods::notify(NHelioAppPage& page, const QJsonObject& params)
{
    const QPointer<NHelioAppPage> notified = &page;
    page.notify(params.value(QLatin1String("text")).toString());
    return notified ? QJsonValue::fromVariant(notified->property(notifyResultProperty)) : QJsonValue();
}

Outcome PageMethods::openFiles(NHelioAppPage& page, const QJsonObject& params)
{
    m_application.collectInfo().markOpenStarted();
    return QJsonValue(page.openFiles(toTexts(params.value(QLatin1String("args"))), {},
                                     NHelioProxyStrategy::Default, page.initialSubPage(), {}));
}

Outcome PageMethods::load(NHelioAppPage& page, const QJsonObject&)
{
    m_pages.markLoadAsked(&page);
    page.load();
    return QJsonValue();
}

Outcome PageMethods::release(NHelioAppPage& page, const QJsonObject&)
{
    page.releasePage();
    return QJsonValue(page.isReleased());
}

void PageMethods::close(const QJsonObject& params, const rpc::Reply& reply)
{
    NHelioAppPage* page = m_pages.find(params.value(QLatin1String("page")).toInt());
    if (!page)
        return reply(noPage(params));
    const auto* window = qobject_cast<ShellMainWindow*>(m_application.findRelativeHelioMainWindow(page));
    NHelioTab* tab = window ? window->tabBar()->tabOf(page->initialSubPage()) : nullptr;
    if (tab ? tab->tryClose() : page->close())
        return reply(QJsonValue(true));
    if (!window)
        return reply(QJsonValue(false));
    window->area().whenDecided(page, [reply](bool closes) { reply(QJsonValue(closes)); });
}

Outcome PageMethods::invoke(NHelioAppPage& page, const QJsonObject& params)
{
    const QString method = params.value(QLatin1String("method")).toString();
    const NHelioPluginWidgetFactoryItemBase* item = NHelioPluginWidgetFactory::findItem(page.widgetType());
    if (!item || !item->hasMethod(method))
        return failed(QStringLiteral("the page has no method \"%1\"").arg(method));
    return invokeByName(page, method, params.value(QLatin1String("args")).toArray());
}

Outcome PageMethods::state(NHelioAppPage& page, const QJsonObject&)
{
    return QJsonValue(pageState(page, m_application, m_pages));
}

Outcome PageMethods::screenshot(NHelioAppPage& page, const QJsonObject& params)
{
    const QString error = saveScreenshot(page, params.value(QLatin1String("file")).toString());
    if (!error.isEmpty())
        return failed(error);
    return QJsonValue();
}

Outcome PageMethods::crash(NHelioAppPage& page, const QJsonObject&)
{
    BrowserControl* control = browserControlOf(page);
    if (!control || !control->crashRenderer())
        return failed(QStringLiteral("the page has no renderer process"));
    return QJsonValue();
}

void PageMethods::evaluate(const QJsonObject& params, const rpc::Reply& reply)
{
    const int timeoutMs = params.value(QLatin1String("timeoutMs")).toInt(defaultTimeoutMs);
    if (timeoutMs <= 0)
        return reply(
            Failure{rpc::InvalidParams, QStringLiteral("parameter \"timeoutMs\" must be greater than 0")});
    const NHelioAppPage* page = m_pages.find(params.value(QLatin1String("page")).toInt());
    if (!page)
        return reply(noPage(params));
    BrowserControl* control = browserControlOf(*page);
    if (!control)
        return reply(failed(QStringLiteral("the page has no browser")));
    control->evaluate(params.value(QLatin1String("code")).toString(), timeoutMs,
                      [reply](const BrowserControl::Evaluation& evaluation) {
                          if (evaluation.error.isEmpty())
                              reply(evaluation.value);
                          else
                              reply(failed(evaluation.error));
                      });
}

} // namespace shell
