#include "nheliostat/framework/ShellBrowserPageItem.h"

#include "nheliostat/framework/ShellBrowserPage.h"

#include <QMetaMethod>

ShellBrowserPageItem::ShellBrowserPageItem()
    : NHelioPluginWidgetFactoryItemBase(ShellBrowserPage::type)
{
    NHelioPluginWidgetFactory::registerPagePlugin(this);
}

ShellBrowserPageItem::~ShellBrowserPageItem()
{
    NHelioPluginWidgetFactory::unregisterPagePlugin(this);
}

QWidget* ShellBrowserPageItem::createWidget(QWidget* parent)
{
    return new ShellBrowserPage(parent);
}

bool ShellBrowserPageItem::hasMethod(const QString& name) const
{
    const QMetaObject& meta = ShellBrowserPage::staticMetaObject;
    for (int index = 0; index < meta.methodCount(); ++index) {
        if (name == QLatin1String(meta.method(index).name()))
            return true;
    }
    return false;
}
