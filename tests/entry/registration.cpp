#include "nheliostat/NHelioPage.h"
#include "nheliostat/NHelioPluginWidgetFactory.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QLibrary>

#include <memory>

namespace {

TEST(Registration, LoadingRegistersThePageTypesAndUnloadingTakesThemBack)
{
    QLibrary module(QString::fromUtf8(SKYLEAF_MODULE));
    ASSERT_EQ(NHelioPluginWidgetFactory::findItem(1), nullptr);
    ASSERT_TRUE(module.load()) << module.errorString().toStdString();

    for (const int type : {1, 48}) {
        NHelioPluginWidgetFactoryItemBase* item = NHelioPluginWidgetFactory::findItem(type);
        ASSERT_NE(item, nullptr) << type;
        EXPECT_TRUE(item->hasMethod(QStringLiteral("notifyUrl")));
        EXPECT_FALSE(item->hasMethod(QStringLiteral("notifyUrl(")));
        EXPECT_FALSE(item->hasMethod(QStringLiteral("NotifyUrl")));
        EXPECT_TRUE(item->hasMethod(QStringLiteral("deleteLater")));

        const std::unique_ptr<QWidget> widget(item->createWidget(nullptr));
        auto* page = qobject_cast<NHelioAppPage*>(widget.get());
        ASSERT_NE(page, nullptr);
        EXPECT_EQ(page->widgetType(), type);
    }

    QFile icon(QStringLiteral(":/icon_svg/VltDocsTabIcon.svg"));
    ASSERT_TRUE(icon.open(QIODevice::ReadOnly));
    EXPECT_EQ(icon.readAll().size(), 2722);
    icon.close();

    ASSERT_TRUE(module.unload());
    EXPECT_EQ(NHelioPluginWidgetFactory::findItem(1), nullptr);
    EXPECT_EQ(NHelioPluginWidgetFactory::findItem(48), nullptr);
}

} // namespace
