#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QMap>
#include <QObject>
#include <QString>

#include <functional>

class NHelioBrowserWidgetBase;
class NHelioSubPage;
class NHelioTab;
class QMenu;

/** Which menu the actions are for. */
enum class NHelioMenuPlace { Page = 1, ToolBar = 2, Tab = 3 };
/** What they act upon. */
enum class NHelioMenuSubject { Document = 1, Selection = 2 };
/** How they are shown. */
enum class NHelioMenuForm { Entries = 1, SubMenu = 2 };

/**
 * What a document in a browser offers in menus: reload, copy its link, pin it, and what its script reported.
 * User-interface thread.
 */
class NHelioBrowserMenu : public QObject
{
    Q_OBJECT
public:
    /** The user chose something that the sub page does: "refresh" or "pin2quickaccess". */
    using ActionCallback = std::function<void(const QString& action)>;
    /** The user chose an entry of the script: the tab, null when it is gone, the entry's id and value. */
    using ItemCallback = std::function<void(NHelioTab* tab, const QString& id, const QJsonValue& value)>;

    using QObject::QObject;

    /** Null until there is one. Not owned. */
    virtual NHelioBrowserWidgetBase* browser() const = 0;
    virtual void setBrowser(NHelioBrowserWidgetBase* browser) = 0;

    /** Makes the actions for a URL; they wait for `attachActions`. */
    virtual void addActions(const QString& url, NHelioMenuPlace place, NHelioMenuSubject subject,
                            NHelioMenuForm form, ActionCallback callback) = 0;
    /** Hands the waiting actions to the menu, which owns them from then on, as the group `name`. */
    virtual void attachActions(QMenu* menu, const QString& name) = 0;

    /** The opened file, as the web application reported it. */
    virtual void setWebFileInfo(const QMap<QString, QString>& info) = 0;
    /**
     * The script's own entries: {"items": [{"id", "text", "enabled", "value"}]}, in place of the earlier
     * ones. Entries without id or text are left out.
     */
    virtual void setMenuItemData(const QJsonObject& data, ItemCallback callback) = 0;
};

/** Makes the menu objects of browsers. */
class NHelioBrowserMenuMgrIns
{
public:
    /** Never null. */
    static NHelioBrowserMenuMgrIns* instantce();

    /** A new menu object, owned by the sub page; `browser` may be null. */
    NHelioBrowserMenu* createMenu(NHelioSubPage* subPage, NHelioBrowserWidgetBase* browser);
};
