#pragma once

#include "bridge/CloudDocsPages.h"
#include "page/NHelioCloudDocsPage.h"

/** Shows a cloud document that another part of the suite asks to preview. */
class NHelioQuillPreviewPage : public NHelioCloudDocsPage, public ICloudDocsPreviewPage
{
    Q_OBJECT
public:
    using NHelioCloudDocsPage::NHelioCloudDocsPage;

    int widgetType() const override;
    /** As the cloud documents page; the property "notifyResult" says whether the text was taken. */
    void notify(const QString& text) override;
    void setFileSrcFrom(const QString& url) override;
    void setSuffix(const QString& suffix) override;
    void setDocumentTitle(const QString& title) override;
};
