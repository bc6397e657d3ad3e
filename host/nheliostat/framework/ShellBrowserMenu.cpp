#include "nheliostat/framework/ShellBrowserMenu.h"

#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/NHelioSubPage.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QJsonArray>
#include <QMenu>
#include <QMimeData>
#include <QUrl>

#include <utility>

namespace {

constexpr int longestText = 80;

} // namespace

NHelioBrowserMenuMgrIns* NHelioBrowserMenuMgrIns::instantce()
{
    static NHelioBrowserMenuMgrIns manager;
    return &manager;
}

NHelioBrowserMenu* NHelioBrowserMenuMgrIns::createMenu(NHelioSubPage* subPage,
                                                       NHelioBrowserWidgetBase* browser)
{
    return new ShellBrowserMenu(subPage, browser);
}

QVector<ShellBrowserMenu::Item> ShellBrowserMenu::readItems(const QJsonObject& data)
{
    QVector<Item> items;
    const QJsonArray reported = data.value(QLatin1String("items")).toArray();
    for (const QJsonValue& each : reported) {
        const QJsonObject entry = each.toObject();
        const QString id = entry.value(QLatin1String("id")).toString();
        const QString text = entry.value(QLatin1String("text")).toString().left(longestText).simplified();
        if (!id.isEmpty() && !text.isEmpty() && items.size() < mostItems)
            items.append({id, text, entry.value(QLatin1String("enabled")).toBool(true),
                          entry.value(QLatin1String("value"))});
    }
    return items;
}

ShellBrowserMenu::ShellBrowserMenu(NHelioSubPage* subPage, NHelioBrowserWidgetBase* browser)
    : NHelioBrowserMenu(subPage)
    , m_subPage(subPage)
    , m_browser(browser)
{
}

ShellBrowserMenu::~ShellBrowserMenu() = default;

NHelioBrowserWidgetBase* ShellBrowserMenu::browser() const
{
    return m_browser;
}

void ShellBrowserMenu::setBrowser(NHelioBrowserWidgetBase* browser)
{
    m_browser = browser;
}

void ShellBrowserMenu::addActions(const QString& url, NHelioMenuPlace place, NHelioMenuSubject subject,
                                  NHelioMenuForm form, ActionCallback callback)
{
    qDeleteAll(std::exchange(m_waiting, {}));
    // The shell has this one menu so far.
    if (place != NHelioMenuPlace::Tab || subject != NHelioMenuSubject::Document ||
        form != NHelioMenuForm::Entries)
        return;
    addAction(QStringLiteral("refresh"), tr("Reload"), [callback] { callback(QStringLiteral("refresh")); });
    addAction(QStringLiteral("copyLink"), tr("Copy link"), [this, url] { copyLink(url); });
    addAction(QStringLiteral("pin2quickaccess"), tr("Pin to quick access"),
              [callback] { callback(QStringLiteral("pin2quickaccess")); });
    addScriptItems();
}

void ShellBrowserMenu::addAction(const QString& name, const QString& text,
                                 const std::function<void()>& chosen)
{
    auto* action = new QAction(text, this);
    action->setObjectName(name);
    // The menu may outlive the document.
    connect(action, &QAction::triggered, this, chosen);
    m_waiting.append(action);
}

void ShellBrowserMenu::addScriptItems()
{
    for (const Item& item : std::as_const(m_items)) {
        QString text = item.text;
        addAction(QStringLiteral("script.") + item.id, text.replace(u'&', QLatin1String("&&")),
                  [this, item] { m_itemCallback(tab(), item.id, item.value); });
        m_waiting.last()->setEnabled(item.enabled);
    }
}

void ShellBrowserMenu::attachActions(QMenu* menu, const QString& name)
{
    const QVector<QAction*> actions = std::exchange(m_waiting, {});
    for (QAction* action : actions) {
        action->setParent(menu);
        action->setProperty("group", name);
        menu->addAction(action);
    }
}

void ShellBrowserMenu::setMenuItemData(const QJsonObject& data, ItemCallback callback)
{
    m_items = callback ? readItems(data) : QVector<Item>();
    m_itemCallback = std::move(callback);
}

void ShellBrowserMenu::copyLink(const QString& url) const
{
    // The query is about how it was opened here.
    const QString address = QUrl(url).toString(QUrl::RemoveQuery | QUrl::FullyEncoded);
    auto* link = new QMimeData;
    link->setText(address);
    const QString name = m_fileInfo.value(QStringLiteral("fileName"));
    if (!name.isEmpty())
        link->setHtml(
            QStringLiteral("<a href=\"%1\">%2</a>").arg(address.toHtmlEscaped(), name.toHtmlEscaped()));
    QGuiApplication::clipboard()->setMimeData(link);
}

NHelioTab* ShellBrowserMenu::tab() const
{
    const NHelioApplication* application = NHelioApplication::instance();
    const NHelioMainWindow* window =
        application ? application->findRelativeHelioMainWindow(m_subPage->page()) : nullptr;
    return window ? window->tabBar()->tabOf(m_subPage) : nullptr;
}
