#include "shell/control/StateReport.h"

#include "shell/pages/PageDirectory.h"
#include "shell/pages/PageWatch.h"

#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nheliostat/framework/ShellApplication.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellMainWindow.h"
#include "nheliostat/framework/ShellTab.h"

#include <QApplication>
#include <QJsonArray>
#include <QMetaMethod>
#include <QVariant>

namespace shell {

namespace {

QJsonObject dynamicProperties(const QObject& object)
{
    QJsonObject properties;
    const QList<QByteArray> names = object.dynamicPropertyNames();
    for (const QByteArray& name : names) {
        if (!name.startsWith("_q_")) // the toolkit's own
            properties.insert(QString::fromUtf8(name),
                              QJsonValue::fromVariant(object.property(name.constData())));
    }
    return properties;
}

QString notifyUrlOf(NHelioAppPage& page)
{
    QString url;
    if (page.metaObject()->indexOfMethod("notifyUrl()") >= 0)
        QMetaObject::invokeMethod(&page, "notifyUrl", Q_RETURN_ARG(QString, url));
    return url;
}

QJsonValue idOrNull(int id)
{
    return id ? QJsonValue(id) : QJsonValue();
}

QJsonObject windowState(const NHelioMainWindow& window, const PageDirectory& pages)
{
    QJsonArray tabs;
    QJsonArray ids;
    const QVector<NHelioAppPage*> all = window.centralArea()->pages();
    for (const NHelioAppPage* page : all) {
        const int id = pages.idOf(page);
        ids.append(id);
        if (const auto* tab = qobject_cast<ShellTab*>(window.tabBar()->tabOf(page->initialSubPage())))
            tabs.append(QJsonObject{{QStringLiteral("page"), id}, {QStringLiteral("title"), tab->text()}});
    }
    return {{QStringLiteral("title"), window.windowTitle()},
            {QStringLiteral("currentPage"), idOrNull(pages.idOf(window.centralArea()->currentPage()))},
            {QStringLiteral("tabs"), tabs},
            {QStringLiteral("pages"), ids}};
}

/** Windows of the cloud and dialogs, not menus and tips. */
bool isOtherWindow(const QWidget& widget)
{
    const Qt::WindowType type = widget.windowType();
    return widget.isVisible() && (type == Qt::Window || type == Qt::Dialog) &&
           !qobject_cast<const NHelioMainWindow*>(&widget);
}

} // namespace

QJsonObject pageState(NHelioAppPage& page, const ShellApplication& application, const PageDirectory& pages)
{
    const NHelioMainWindow* window = application.findRelativeHelioMainWindow(&page);
    const int index = application.mainWindows().indexOf(const_cast<NHelioMainWindow*>(window));
    const NHelioBrowserWidgetBase* browser = browserOf(&page);
    return {{QStringLiteral("type"), page.widgetType()},
            {QStringLiteral("title"), page.pageTitle()},
            {QStringLiteral("url"), browser ? browser->currentUrl() : QString()},
            {QStringLiteral("notifyUrl"), notifyUrlOf(page)},
            {QStringLiteral("loaded"), pages.isLoaded(&page)},
            {QStringLiteral("released"), page.isReleased()},
            {QStringLiteral("current"), window && window->centralArea()->currentPage() == &page},
            {QStringLiteral("window"), index >= 0 ? QJsonValue(index) : QJsonValue()},
            {QStringLiteral("properties"), dynamicProperties(page)}};
}

QJsonObject shellState(const ShellApplication& application, const PageDirectory& pages)
{
    QJsonArray windows;
    const QVector<NHelioMainWindow*> all = application.mainWindows();
    for (const NHelioMainWindow* window : all)
        windows.append(windowState(*window, pages));
    QJsonArray others;
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (const QWidget* widget : widgets) {
        if (isOtherWindow(*widget))
            others.append(QJsonObject{{QStringLiteral("name"), widget->objectName()},
                                      {QStringLiteral("title"), widget->windowTitle()}});
    }
    return {{QStringLiteral("windows"), windows}, {QStringLiteral("otherWindows"), others}};
}

} // namespace shell
