#include "page/NHelioQuillHyperlinkPageFactory.h"

#include "page/NHelioQuillHyperlinkPage.h"

NHelioAppPage* NHelioQuillHyperlinkPageFactory::createPage()
{
    auto* page = new NHelioQuillHyperlinkPage(nullptr, false, true);
    page->setToolBarVisible(true);
    return page;
}
