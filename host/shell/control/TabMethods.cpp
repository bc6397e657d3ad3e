#include "shell/control/TabMethods.h"

#include "shell/pages/PageDirectory.h"

#include "nheliostat/framework/ShellApplication.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellMainWindow.h"
#include "nheliostat/framework/ShellQuickAccess.h"
#include "nheliostat/framework/ShellTab.h"
#include "nheliostat/framework/ShellTabBar.h"

#include <QJsonArray>
#include <QMenu>

#include <algorithm>
#include <memory>

namespace shell {

namespace {

using rpc::Failure;
using rpc::Outcome;
using Type = rpc::Parameter::Type;

struct DeleteLater
{
    void operator()(QObject* object) const { object->deleteLater(); }
};
/** What an action does may still have to come back through the menu. */
using Menu = std::unique_ptr<QMenu, DeleteLater>;

Failure failed(const QString& message)
{
    return {rpc::OperationFailed, message};
}

ShellMainWindow* windowOf(const ShellApplication& application, const NHelioAppPage& page)
{
    return qobject_cast<ShellMainWindow*>(application.findRelativeHelioMainWindow(&page));
}

Menu menuOf(const ShellApplication& application, const NHelioAppPage& page)
{
    const ShellMainWindow* window = windowOf(application, page);
    return Menu(window ? window->tabs().makeMenu(page.initialSubPage()) : nullptr);
}

} // namespace

TabMethods::TabMethods(ShellApplication& application, PageDirectory& pages)
    : m_application(application)
    , m_pages(pages)
{
}

QVector<rpc::Method> TabMethods::methods()
{
    const rpc::Parameter fileId{QStringLiteral("fileId"), Type::Text};
    const auto fileIdOf = [](const QJsonObject& params) {
        return params.value(QLatin1String("fileId")).toString();
    };
    return {
        pageMethod(QStringLiteral("tab.menu"), {}, &TabMethods::menu),
        pageMethod(QStringLiteral("tab.trigger"), {{QStringLiteral("action"), Type::Text}},
                   &TabMethods::trigger),
        pageMethod(QStringLiteral("tab.select"), {}, &TabMethods::select),
        pageMethod(QStringLiteral("tab.move"), {{QStringLiteral("index"), Type::Integer}}, &TabMethods::move),
        pageMethod(QStringLiteral("tab.icon"), {{QStringLiteral("file"), Type::Text}}, &TabMethods::icon),
        rpc::immediateMethod(QStringLiteral("quickAccess.list"), {},
                             [this](const QJsonObject&) { return listQuickAccess(); }),
        rpc::immediateMethod(
            QStringLiteral("quickAccess.open"), {fileId},
            [this, fileIdOf](const QJsonObject& params) { return openQuickAccess(fileIdOf(params)); }),
        rpc::immediateMethod(
            QStringLiteral("quickAccess.unpin"), {fileId}, [this, fileIdOf](const QJsonObject& params) {
                return QJsonValue(m_application.quickAccess().list().unpin(fileIdOf(params)));
            })};
}

rpc::Method TabMethods::pageMethod(const QString& name, QVector<rpc::Parameter> parameters,
                                   PageOperation operation)
{
    parameters.prepend({QStringLiteral("page"), Type::Integer});
    return rpc::immediateMethod(name, parameters, [this, operation](const QJsonObject& params) -> Outcome {
        const int id = params.value(QLatin1String("page")).toInt();
        NHelioAppPage* page = m_pages.find(id);
        return page ? (this->*operation)(*page, params) : failed(QStringLiteral("no page %1").arg(id));
    });
}

Outcome TabMethods::menu(NHelioAppPage& page, const QJsonObject&)
{
    const Menu menu = menuOf(m_application, page);
    if (!menu)
        return failed(QStringLiteral("the page has no tab"));
    QJsonArray entries;
    const QList<QAction*> actions = menu->actions();
    for (const QAction* action : actions) {
        if (!action->isSeparator())
            entries.append(QJsonObject{{QStringLiteral("name"), action->objectName()},
                                       {QStringLiteral("text"), action->text()},
                                       {QStringLiteral("enabled"), action->isEnabled()}});
    }
    return QJsonValue(entries);
}

Outcome TabMethods::trigger(NHelioAppPage& page, const QJsonObject& params)
{
    const QString name = params.value(QLatin1String("action")).toString();
    const Menu menu = menuOf(m_application, page);
    const QList<QAction*> actions = menu ? menu->actions() : QList<QAction*>();
    const auto action = std::find_if(actions.begin(), actions.end(), [&name](const QAction* each) {
        return !each->isSeparator() && each->objectName() == name;
    });
    if (action == actions.end())
        return failed(QStringLiteral("no action \"%1\" in the tab's menu").arg(name));
    if (!(*action)->isEnabled())
        return failed(QStringLiteral("the action \"%1\" is not enabled").arg(name));
    (*action)->trigger();
    return QJsonValue();
}

Outcome TabMethods::select(NHelioAppPage& page, const QJsonObject&)
{
    const ShellMainWindow* window = windowOf(m_application, page);
    if (!window)
        return failed(QStringLiteral("the page has no window"));
    window->area().setCurrentPage(&page);
    return QJsonValue();
}

Outcome TabMethods::move(NHelioAppPage& page, const QJsonObject& params)
{
    const ShellMainWindow* window = windowOf(m_application, page);
    if (!window)
        return failed(QStringLiteral("the page has no window"));
    window->tabs().moveTab(&page, params.value(QLatin1String("index")).toInt());
    return QJsonValue();
}

Outcome TabMethods::icon(NHelioAppPage& page, const QJsonObject& params)
{
    constexpr int side = 32;
    const ShellMainWindow* window = windowOf(m_application, page);
    const auto* tab = window ? qobject_cast<ShellTab*>(window->tabs().tabOf(page.initialSubPage())) : nullptr;
    const QIcon icon = tab ? tab->icon(1) : QIcon();
    if (icon.isNull())
        return failed(QStringLiteral("the tab has no icon"));
    const QString file = params.value(QLatin1String("file")).toString();
    if (!icon.pixmap(side, side).save(file, "PNG"))
        return failed(QStringLiteral("cannot write %1").arg(file));
    return QJsonValue();
}

Outcome TabMethods::listQuickAccess() const
{
    QuickAccessList& list = m_application.quickAccess().list();
    list.reload();
    QJsonArray entries;
    for (const QuickAccessEntry& entry : list.entries())
        entries.append(QJsonObject{{QStringLiteral("fileId"), entry.fileId},
                                   {QStringLiteral("name"), entry.name},
                                   {QStringLiteral("suffix"), entry.suffix}});
    return QJsonValue(entries);
}

Outcome TabMethods::openQuickAccess(const QString& fileId)
{
    ShellQuickAccess& quickAccess = m_application.quickAccess();
    const QVector<QuickAccessEntry> entries = quickAccess.list().entries();
    const auto entry = std::find_if(entries.begin(), entries.end(), [&fileId](const QuickAccessEntry& each) {
        return each.fileId == fileId;
    });
    if (entry == entries.end())
        return failed(QStringLiteral("\"%1\" is not pinned").arg(fileId));
    auto* window = qobject_cast<ShellMainWindow*>(m_application.widget());
    if (!window || !quickAccess.open(*entry, *window))
        return failed(QStringLiteral("\"%1\" cannot be opened").arg(fileId));
    return QJsonValue();
}

} // namespace shell
