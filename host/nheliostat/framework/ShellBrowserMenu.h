#pragma once

#include "nheliostat/NHelioBrowserMenu.h"

#include <QPointer>
#include <QVector>

class QAction;

/** The document actions of the shell's browsers. */
class ShellBrowserMenu final : public NHelioBrowserMenu
{
    Q_OBJECT
public:
    /** An entry of the script, as it reported it. */
    struct Item
    {
        QString id;
        QString text;
        bool enabled = true;
        QJsonValue value;
    };
    /** The entries in the report: those with id and text, at most `mostItems`, texts cut to one short line.
     */
    static QVector<Item> readItems(const QJsonObject& data);
    static constexpr int mostItems = 20;

    explicit ShellBrowserMenu(NHelioSubPage* subPage, NHelioBrowserWidgetBase* browser);
    ~ShellBrowserMenu() override;

    NHelioBrowserWidgetBase* browser() const override;
    void setBrowser(NHelioBrowserWidgetBase* browser) override;
    void addActions(const QString& url, NHelioMenuPlace place, NHelioMenuSubject subject, NHelioMenuForm form,
                    ActionCallback callback) override;
    void attachActions(QMenu* menu, const QString& name) override;
    void setWebFileInfo(const QMap<QString, QString>& info) override { m_fileInfo = info; }
    void setMenuItemData(const QJsonObject& data, ItemCallback callback) override;

private:
    void addAction(const QString& name, const QString& text, const std::function<void()>& chosen);
    void addScriptItems();
    void copyLink(const QString& url) const;
    NHelioTab* tab() const;

    NHelioSubPage* m_subPage;
    QPointer<NHelioBrowserWidgetBase> m_browser;
    QVector<QAction*> m_waiting; //!< children
    QMap<QString, QString> m_fileInfo;
    QVector<Item> m_items;
    ItemCallback m_itemCallback;
};
