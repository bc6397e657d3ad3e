#pragma once

#include "bridge/CloudDocsPages.h"
#include "page/NHelioCloudDocsPage.h"

struct PreviewCommand;

/** Shows a cloud document that another part of the suite asks to preview. */
class NHelioQuillPreviewPage : public NHelioCloudDocsPage, public ICloudDocsPreviewPage
{
    Q_OBJECT
public:
    using NHelioCloudDocsPage::NHelioCloudDocsPage;

    int widgetType() const override;
    /**
     * Takes "suffix:<suffix>", the positional command "previewCloudDoc&…", and whatever the cloud documents
     * page takes. The property "notifyResult" says whether it was taken; it stays as it is when a preview
     * is asked of a page outside any window.
     */
    void notify(const QString& text) override;
    void setFileSrcFrom(const QString& url) override;
    void setSuffix(const QString& suffix) override;
    void setDocumentTitle(const QString& title) override;

private:
    bool takeSuffixCommand(const QString& text);
    bool preview(const PreviewCommand& command);
};
