#include "entry/NHelioPluginWidgetFactoryItem.h"
#include "page/NHelioCloudDocsPage.h"
#include "page/NHelioQuillPreviewPage.h"

#include <new>

// Loading the module registers its page types with the shell; unloading it takes them back.

template <>
struct NPageCreation<NHelioCloudDocsPage>
{
    static QWidget* create(QWidget* parent)
    {
        return new (std::nothrow) NHelioCloudDocsPage(parent, true, false);
    }
};

template <>
struct NPageCreation<NHelioQuillPreviewPage>
{
    static QWidget* create(QWidget* parent)
    {
        auto* page = new (std::nothrow) NHelioQuillPreviewPage(parent, true, true);
        if (page)
            page->setToolBarVisible(true);
        return page;
    }
};

namespace {

constexpr int cloudDocsPageType = 1;

NHelioPluginWidgetFactoryItem<NHelioCloudDocsPage> cloudDocsItem(cloudDocsPageType);
NHelioPluginWidgetFactoryItem<NHelioQuillPreviewPage> previewItem(previewPageType);

} // namespace
