#pragma once

#include "nheliostat/NHelioPluginWidgetFactory.h"

#include <QWidget>

#include <functional>
#include <utility>

/** Registers a function as the maker of a page type while it lives. */
class FakeFactoryItem final : public NHelioPluginWidgetFactoryItemBase
{
public:
    using Maker = std::function<QWidget*(QWidget* parent)>;

    explicit FakeFactoryItem(
        int type, Maker maker = [](QWidget*) { return nullptr; })
        : NHelioPluginWidgetFactoryItemBase(type)
        , m_maker(std::move(maker))
    {
        NHelioPluginWidgetFactory::registerPagePlugin(this);
    }
    ~FakeFactoryItem() override { NHelioPluginWidgetFactory::unregisterPagePlugin(this); }

    QWidget* createWidget(QWidget* parent) override { return m_maker(parent); }
    bool hasMethod(const QString&) const override { return false; }

private:
    Maker m_maker;
};
