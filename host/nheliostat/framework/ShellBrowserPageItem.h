#pragma once

#include "nheliostat/NHelioPluginWidgetFactory.h"

/** Makes plain browser pages; registered as long as it lives. */
class ShellBrowserPageItem final : public NHelioPluginWidgetFactoryItemBase
{
public:
    ShellBrowserPageItem();
    ~ShellBrowserPageItem() override;

    QWidget* createWidget(QWidget* parent) override;
    bool hasMethod(const QString& name) const override;
};
