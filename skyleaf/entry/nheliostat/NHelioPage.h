#pragma once

#include <QIcon>
#include <QList>
#include <QMetaType>
#include <QPointer>
#include <QStringList>
#include <QVariantMap>
#include <QWidget>

class NHelioSubPage;
class NHelioSubPages;
struct NHelioWorkAreaRecoverItem;

/** How the framework asks a page to open files; only handed through by pages of the add-on. */
enum class NHelioProxyStrategy { Default = 0, Ask = 1, Direct = 2 };

/** A widget that a module provides to the shell. */
class NHelioPluginWidget : public QWidget
{
    Q_OBJECT
public:
    using QWidget::QWidget;
    /** The type number that the widget was registered under. */
    virtual int widgetType() const = 0;
};

/** A page of a main window's central area. User-interface thread; owned by the central area it was added to.
 */
class NHelioPage : public NHelioPluginWidget
{
    Q_OBJECT
public:
    explicit NHelioPage(QWidget* parent = nullptr);
    ~NHelioPage() override;

    /** The sub pages of the page; never null. */
    NHelioSubPages* subPages() const { return m_subPages; }
    /** The sub page made when the page was added to a central area; null before and after its life. */
    NHelioSubPage* initialSubPage() const;
    void setInitialSubPage(NHelioSubPage* subPage);

    /** The title shown for the page. */
    virtual QString pageTitle() const = 0;
    /** A new sub page for `subPages` (its owner), or null. */
    virtual NHelioSubPage* createSubPage(NHelioSubPages* subPages) = 0;
    /** Tells the page what to show. */
    virtual void notify(const QString& text) = 0;
    /** Shows what the page was told; does nothing when it is already shown. */
    virtual void load() = 0;

private:
    NHelioSubPages* m_subPages;
    QPointer<NHelioSubPage> m_initialSubPage;
};

/** A page of an application: opens files, is released when inactive, is recovered after a crash. */
class NHelioAppPage : public NHelioPage
{
    Q_OBJECT
public:
    using NHelioPage::NHelioPage;

    /** Whether the inactive page may be released now. */
    virtual bool isDiscardable() const { return false; }
    /** Frees what an inactive page does not need; the next `load` brings it back. */
    virtual void releasePage() {}
    virtual bool isReleased() const { return false; }
    /** True when the arguments were handled. */
    virtual bool openFiles(const QStringList& args, const QStringList& names, NHelioProxyStrategy strategy,
                           NHelioSubPage* subPage, const QVariantMap& extra);
    /** Gives the page what it showed before; true when it takes it. */
    virtual bool recoverFiles(const QList<NHelioWorkAreaRecoverItem>& items, int strategy,
                              NHelioSubPage* subPage);
    /** Opens a document in the page: activates its initial sub page and loads. */
    virtual void newDocument(const QString& text, const QStringList& args, NHelioProxyStrategy strategy,
                             NHelioSubPage* subPage, const QVariantMap& extra);
    /** Opens files of the cloud by their ids, for pages that know them. True when the page takes them. */
    virtual bool openLocalFiles(const QStringList& args, const QStringList& names,
                                NHelioProxyStrategy strategy, NHelioSubPage* subPage,
                                const QVariantMap& extra, bool activate);
    virtual void notifyFocusIn();
    /** False when the page is hidden behind others of its tab. */
    virtual bool isAlive() const { return true; }
    /** Called when the page becomes or stops being the current page of its window. */
    virtual void updateLastActiveTime() {}
    virtual void handleNotifyParams(const QVariantMap& params) { Q_UNUSED(params) }
    /** Tells the page where its file came from, after every load. */
    virtual void setFileSrcFrom(const QString& url) { Q_UNUSED(url) }
};

/** A page of local documents: each is a sub page of it. */
class NHelioVltPage : public NHelioAppPage
{
    Q_OBJECT
public:
    using NHelioAppPage::NHelioAppPage;
    /** The sub page of the document that the parameters ("fileId", "historyid") name, or null. */
    virtual NHelioSubPage* findSubPage(const QMap<QString, QString>& parameters,
                                       bool includesHidden = false) const = 0;
    /** False when the document stays open. */
    virtual bool closeSubPage(NHelioSubPage* subPage) = 0;
};

/** One entry of the work-area recovery: what a sub page showed. */
struct NHelioWorkAreaRecoverItem
{
    QString id;
    int pageType = -1;
    QString title;
    QString suffix;
    /** "url", "toolBarVisible", "fileId", "fileName", "from". */
    QVariantMap params;
};

Q_DECLARE_METATYPE(NHelioWorkAreaRecoverItem)

/** What a page was given to recover. */
struct HelioBrowserPageRecoverContext
{
    bool recover = false;
    int strategy = 0;
    QList<NHelioWorkAreaRecoverItem> items;
};
