#pragma once

#include "nheliostat/NHelioPluginWidgetFactory.h"

namespace shell {

/** Makes process pages of one type; registered as long as it lives. */
class ProcessPageItem final : public NHelioPluginWidgetFactoryItemBase
{
public:
    explicit ProcessPageItem(int type);
    ~ProcessPageItem() override;

    QWidget* createWidget(QWidget* parent) override;
    bool hasMethod(const QString&) const override { return false; }
};

} // namespace shell
