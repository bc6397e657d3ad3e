#pragma once

#include "nheliostat/NHelioSubPage.h"

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
    NHelioTabDelegate* createTabDelegate(QObject* parent) override;

Q_SIGNALS:
    void sigBrowserCreateSucceeded(NHelioBrowserWidgetBase* browser);

public Q_SLOTS:
    void onBrowserCreateSucceeded(NHelioBrowserWidgetBase* browser);

private:
    QPointer<NHelioBrowserWidgetBase> m_browser;
};
