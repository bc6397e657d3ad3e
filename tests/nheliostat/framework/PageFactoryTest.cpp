#include "FactoryItems.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

constexpr int type = 940;

class NamedItem final : public NHelioPluginWidgetFactoryItemBase
{
public:
    explicit NamedItem(const QString& name)
        : NHelioPluginWidgetFactoryItemBase(name)
    {
    }
    QWidget* createWidget(QWidget*) override { return nullptr; }
    bool hasMethod(const QString&) const override { return false; }
};

TEST(PageFactory, FindsAnItemWhileItIsRegistered)
{
    EXPECT_EQ(NHelioPluginWidgetFactory::findItem(type), nullptr);
    {
        FakeFactoryItem item(type);
        EXPECT_EQ(NHelioPluginWidgetFactory::findItem(type), &item);
        EXPECT_EQ(NHelioPluginWidgetFactory::findItem(type + 1), nullptr);
    }
    EXPECT_EQ(NHelioPluginWidgetFactory::findItem(type), nullptr);
}

TEST(PageFactory, TheLastOfTwoItemsCountsAndTheFirstDoesNotTakeItAway)
{
    auto first = std::make_unique<FakeFactoryItem>(type);
    const FakeFactoryItem second(type);
    EXPECT_EQ(NHelioPluginWidgetFactory::findItem(type), &second);
    first.reset();
    EXPECT_EQ(NHelioPluginWidgetFactory::findItem(type), &second);
}

TEST(PageFactory, ItemsOfAStringTypeAreNoNumberedOnes)
{
    NamedItem item(QStringLiteral("a page"));
    NHelioPluginWidgetFactory::registerPagePlugin(&item);
    EXPECT_EQ(NHelioPluginWidgetFactory::findItem(-1), nullptr);
    NHelioPluginWidgetFactory::unregisterStrPagePlugin(&item);
}

} // namespace
