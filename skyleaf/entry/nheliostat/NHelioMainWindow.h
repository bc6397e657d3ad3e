#pragma once

#include "nheliostat/NHelioPage.h"

#include <QMainWindow>
#include <QVector>

class NHelioCentralArea;
class NHelioTab;
class NHelioTabBar;
class NHelioWorkAreaManager;

/** The pages of a main window; owns them. User-interface thread. */
class NHelioCentralArea : public QWidget
{
    Q_OBJECT
public:
    using QWidget::QWidget;

    virtual QVector<NHelioAppPage*> pages() const = 0;
    /** Null outside the range. */
    virtual NHelioAppPage* pageAt(int index) const = 0;
    virtual NHelioAppPage* currentPage() const = 0;

    /**
     * Creates a page of a registered type with its sub page and tab and takes it in, behind the current one.
     * A text that is not empty is notified to it; `params` go to `handleNotifyParams`. Null when no page can
     * be created.
     */
    virtual NHelioAppPage* addPage(int type, const QString& text, const QVariantMap& params) = 0;
    /** Takes in a page that exists; it gets its sub page and tab. */
    virtual void addPage(NHelioAppPage* page) = 0;
    /** A plain browser page (widget type 11) that shows the URL, made current. */
    virtual NHelioAppPage* addBrowserPage(const QString& url) = 0;
    /** Takes the page and its tab out without deleting the page; it has no parent then. */
    virtual void removePage(NHelioAppPage* page) = 0;
    virtual void setCurrentPage(NHelioAppPage* page) = 0;
};

/** A tab of the tab bar. */
class NHelioTab : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;
    /** Closes the tab with its page unless the page refuses. False also while the page's document is asked
     * first; the tab then closes later, or stays. */
    virtual bool tryClose() = 0;
    virtual void setAllowReAttachSubwindow(bool allow) = 0;
    virtual void reAttachSubPage(QWidget* window) = 0;
};

class NHelioTabBar : public QWidget
{
    Q_OBJECT
public:
    using QWidget::QWidget;
    /** Null when the sub page has no tab here. */
    virtual NHelioTab* tabOf(NHelioSubPage* subPage) const = 0;
};

class NHelioHeaderBar : public QWidget
{
    Q_OBJECT
public:
    using QWidget::QWidget;
    /** 0: pages are tabs of one window; 1: pages stand in windows of their own. */
    virtual int mode() const = 0;
};

/** Keeps what is shown so that it can be shown again after a crash. */
class NHelioWorkAreaManager
{
public:
    virtual ~NHelioWorkAreaManager() = default;
    virtual void updateItem(const QString& id) = 0;
};

/** The dock panels of a window. */
class NHelioDockPanelUtility
{
public:
    virtual ~NHelioDockPanelUtility() = default;
    virtual QString getDefaultDockContainerId() const = 0;
    /**
     * Hands a message to the panels of a container. The receiver, which may be null, is the object that the
     * message comes from. False when the container is unknown or nobody takes the message.
     */
    virtual bool notifyDockMessage(const QString& containerId, const QString& event, const QString& message,
                                   const QString& source, QObject* receiver) = 0;
    /** Whether the user can reach the panel, such as "dockpanel_sorrel". */
    virtual bool isDockPanelEntryVisible(const QString& panelId) const = 0;
};

class NHelioMainWindow : public QMainWindow
{
    Q_OBJECT
public:
    using QMainWindow::QMainWindow;

    virtual NHelioCentralArea* centralArea() const = 0;
    virtual NHelioTabBar* tabBar() const = 0;
    virtual NHelioHeaderBar* headerBar() const = 0;
    virtual NHelioWorkAreaManager* workAreaManager() const = 0;
    virtual NHelioDockPanelUtility* getDockPanelUtility() const = 0;
    /** Whether the keyboard focus stays where it is when a page is told that it has it. */
    virtual bool isFocusLockedInCurrentPage() const = 0;
    virtual void showToFront(bool restore, bool raise, bool flash) = 0;
};
