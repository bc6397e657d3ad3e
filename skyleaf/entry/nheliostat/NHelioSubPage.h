#pragma once

#include "nheliostat/NHelioPage.h"

#include <QIcon>
#include <QMenu>
#include <QObject>
#include <QPointer>
#include <QVector>

class NHelioBrowserWidgetBase;
class NHelioSubPage;
class NHelioTabDelegate;

/** The sub pages that share one tab. */
class NHelioTabAssistant : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;
    bool isHidden() const { return m_hidden; }
    void setHidden(bool hidden) { m_hidden = hidden; }
    NHelioSubPage* currentSubPage() const;
    void activate(NHelioSubPage* subPage);

private:
    bool m_hidden = false;
    QPointer<NHelioSubPage> m_current;
};

/** The sub pages of a page, in order; owns them. */
class NHelioSubPages : public QObject
{
    Q_OBJECT
public:
    explicit NHelioSubPages(NHelioPage* page);
    NHelioPage* page() const;
    QVector<NHelioSubPage*> all() const;
    bool isEmpty() const { return all().isEmpty(); }
};

/** What the tab bar and the work-area recovery deal with: one shown document of a page. */
class NHelioSubPage : public QObject
{
    Q_OBJECT
public:
    explicit NHelioSubPage(NHelioSubPages* subPages);

    NHelioPage* page() const;
    int pageType() const;

    QString windowTitle() const { return m_windowTitle; }
    void setWindowTitle(const QString& title);
    /** Asks the tab to draw its icon again. */
    void refreshIcon();
    /** Null when the sub page has its tab for itself. */
    NHelioTabAssistant* tabAssistant() const { return m_tabAssistant; }
    void setTabAssistant(NHelioTabAssistant* assistant) { m_tabAssistant = assistant; }
    /** The id under which the work area keeps the sub page; empty when it does not. */
    QString workAreaItemId() const { return m_workAreaItemId; }
    void setWorkAreaItemId(const QString& id) { m_workAreaItemId = id; }
    bool isClosable() const { return m_closable; }
    void setClosable(bool closable) { m_closable = closable; }

    /** Makes the sub page the shown one of its window. */
    virtual void activate(const QString& name, bool flag);
    /** Whether the sub page may stand in a window of its own. */
    virtual bool supportsStandaloneWindow() const { return false; }
    /** Whether the work area keeps the sub page. */
    virtual bool supportsWorkArea() const { return false; }
    /** Fills `item` with what is needed to show the sub page again; false when there is nothing to recover.
     */
    virtual bool getWorkAreaRecoverItem(NHelioWorkAreaRecoverItem* item);
    /** The delegate that draws the tab; owned by `parent`. */
    virtual NHelioTabDelegate* createTabDelegate(QObject* parent);
    /** Adds what the sub page offers to a menu; that of its tab is an NHelioTabMenu. */
    virtual void doAttachContextMenuActions(QMenu* menu);
    /** False when what is shown would be lost, were the page restarted now. */
    virtual bool isDiscardable() const { return true; }

Q_SIGNALS:
    void subPageActived();
    void windowTitleChanged(const QString& title);
    void iconChanged();
    /** `activate` was called: the window brings the page to the front. */
    void activationRequested();

private:
    QString m_windowTitle;
    QString m_workAreaItemId;
    QPointer<NHelioTabAssistant> m_tabAssistant;
    bool m_closable = true;
};

/** Draws a tab: its icon. */
class NHelioTabDelegate : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;
    /** A null icon lets the tab bar draw none. */
    virtual QIcon getIcon(qreal devicePixelRatio) const;

Q_SIGNALS:
    /** `getIcon` answers another icon from now on. */
    void iconChanged();
};

/** The tab of a browser: shows the icon of the document's site, else that of the file that its title names.
 */
class NHelioBrowserTabDelegate : public NHelioTabDelegate
{
    Q_OBJECT
public:
    NHelioBrowserTabDelegate(QObject* parent, NHelioBrowserWidgetBase* browser);
    /** Follows the browser's icons from now on. */
    void initDelegate(NHelioBrowserWidgetBase* browser);
    QIcon getIcon(qreal devicePixelRatio) const override;

private:
    void onFaviconChange(const QList<QIcon>& icons);
    void onTitleChanged(const QString& title);

    QPointer<NHelioBrowserWidgetBase> m_browser;
    QIcon m_favicon;
    QIcon m_titleIcon;
};

/** The shell's icon for files of a suffix (without the dot; letter case does not matter); null for an empty
 * suffix. */
QIcon helioFileIcon(const QString& suffix);
