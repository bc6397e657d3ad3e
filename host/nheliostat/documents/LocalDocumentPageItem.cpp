#include "nheliostat/documents/LocalDocumentPageItem.h"

#include "nheliostat/documents/LocalDocumentPage.h"

LocalDocumentPageItem::LocalDocumentPageItem(bool offersSystem)
    : NHelioPluginWidgetFactoryItemBase(LocalDocumentPage::type)
    , m_offersSystem(offersSystem)
{
    NHelioPluginWidgetFactory::registerPagePlugin(this);
}

LocalDocumentPageItem::~LocalDocumentPageItem()
{
    NHelioPluginWidgetFactory::unregisterPagePlugin(this);
}

QWidget* LocalDocumentPageItem::createWidget(QWidget* parent)
{
    return new LocalDocumentPage(m_offersSystem, parent);
}
