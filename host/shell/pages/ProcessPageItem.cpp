#include "shell/pages/ProcessPageItem.h"

#include "shell/pages/ProcessPage.h"

namespace shell {

ProcessPageItem::ProcessPageItem(int type)
    : NHelioPluginWidgetFactoryItemBase(type)
{
    NHelioPluginWidgetFactory::registerPagePlugin(this);
}

ProcessPageItem::~ProcessPageItem()
{
    NHelioPluginWidgetFactory::unregisterPagePlugin(this);
}

QWidget* ProcessPageItem::createWidget(QWidget* parent)
{
    return new ProcessPage(type(), parent);
}

} // namespace shell
