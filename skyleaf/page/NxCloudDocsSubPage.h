#pragma once

#include "nheliostat/NHelioSubPage.h"

#include <QJsonObject>
#include <QMap>

class NHelioBrowserMenu;
class NHelioCloudDocsPage;

/** The sub page of a cloud documents page. Owned by the page's sub pages. */
class NxCloudDocsSubPage : public NHelioSubPage
{
    Q_OBJECT
public:
    /** `browser` is not owned; null until the page has one. */
    NxCloudDocsSubPage(NHelioSubPages* subPages, NHelioBrowserWidgetBase* browser);

    void activate(const QString& name, bool flag) override;
    bool supportsStandaloneWindow() const override { return true; }
    bool supportsWorkArea() const override { return true; }
    /** False for a page that shows nothing but a blank page. */
    bool getWorkAreaRecoverItem(NHelioWorkAreaRecoverItem* item) override;
    bool isDiscardable() const override;
    NHelioTabDelegate* createTabDelegate(QObject* parent) override;
    void doAttachContextMenuActions(QMenu* menu) override;

Q_SIGNALS:
    void sigBrowserCreateSucceeded(NHelioBrowserWidgetBase* browser);

public Q_SLOTS:
    void onPinToQuickAccess();
    void onRefreshAction();
    void onBrowserCreateSucceeded(NHelioBrowserWidgetBase* browser);
    void onWebFileReady(const QMap<QString, QString>& info);
    void onMenuItemDataReady(const QJsonObject& data);

private:
    NHelioCloudDocsPage* docsPage() const;
    void onMenuAction(const QString& action);

    QPointer<NHelioBrowserWidgetBase> m_browser;
    NHelioBrowserMenu* m_menu; //!< a child
};
