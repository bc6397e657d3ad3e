#include "nheliostat/framework/AssistantPanel.h"
#include "nheliostat/framework/CloudToLocalSteps.h"
#include "nheliostat/framework/ShellHeaderBar.h"
#include "support/ShellFixture.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QDockWidget>
#include <QLabel>
#include <QToolButton>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

class DockPanels : public ShellFixture
{
protected:
    bool notify(const QString& message, const char* event = "dockPanelNotification",
                const QString& container = {})
    {
        NHelioDockPanelUtility* panels = window->getDockPanelUtility();
        return panels->notifyDockMessage(container.isEmpty() ? panels->getDefaultDockContainerId()
                                                             : container,
                                         s(event), message, s("quill"), nullptr);
    }
    QDockWidget* dock() { return window->findChild<QDockWidget*>(s("assistantDock")); }
    AssistantPanel* assistant() { return window->findChild<AssistantPanel*>(); }

    const QString good = s(R"({"data":{"n":1},"receiverId":"dockpanel_sorrel","docSource":"online"})");
};

TEST_F(DockPanels, TheAssistantOpensWithTheFirstMessageAndShowsIt)
{
    start();
    window->show();
    EXPECT_TRUE(dock()->isHidden());
    EXPECT_TRUE(notify(good));
    EXPECT_FALSE(dock()->isHidden());
    EXPECT_EQ(assistant()->findChild<QLabel*>(s("assistantData"))->text(), s("{\n    \"n\": 1\n}"));
    EXPECT_EQ(assistant()->findChild<QLabel*>(s("assistantSource"))->text(), s("quill · online"));
    window->findChild<QToolButton*>(s("assistantToggleButton"))->click();
    EXPECT_TRUE(dock()->isHidden());
    for (int i = 0; i < AssistantPanel::mostMessages; ++i)
        EXPECT_TRUE(notify(good));
    EXPECT_TRUE(dock()->isHidden()) << "it was closed by hand";
    EXPECT_EQ(assistant()->count(), AssistantPanel::mostMessages);
}

TEST_F(DockPanels, WhatNobodyTakesIsRefused)
{
    start();
    for (const char* message :
         {"", "[]", "{\"receiverId\":\"dockpanel_sorrel\"}", R"({"data":{},"receiverId":"other"})",
          R"({"data":[],"receiverId":"dockpanel_sorrel"})"})
        EXPECT_FALSE(notify(s(message))) << message;
    EXPECT_FALSE(notify(good, "other"));
    EXPECT_FALSE(notify(good, "dockPanelNotification", s("other")));
    EXPECT_EQ(assistant()->count(), 0);
    EXPECT_FALSE(window->getDockPanelUtility()->isDockPanelEntryVisible(s("other")));
    EXPECT_TRUE(window->getDockPanelUtility()->isDockPanelEntryVisible(s("dockpanel_sorrel")));
}

TEST_F(DockPanels, ADeploymentCanDoWithoutTheAssistant)
{
    runtime.productSwitches.insert(s("SorrelDockPanel"), false);
    start();
    EXPECT_FALSE(window->getDockPanelUtility()->isDockPanelEntryVisible(s("dockpanel_sorrel")));
    EXPECT_TRUE(window->findChild<QToolButton*>(s("assistantToggleButton"))->isHidden());
    EXPECT_FALSE(notify(good));
}

TEST_F(DockPanels, TheModeOfTheHeaderBarIsAValueThatCanBeSet)
{
    start();
    for (const auto& [set, expected] : {std::pair(1, 1), {2, 1}, {0, 0}}) {
        window->header().setMode(set);
        EXPECT_EQ(window->headerBar()->mode(), expected);
    }
}

TEST_F(DockPanels, TheStepsOfADocumentAreCollected)
{
    start();
    auto* collector = shell->property("CooperateInfoCollectCloudToLocal").value<QObject*>();
    ASSERT_TRUE(QMetaObject::invokeMethod(collector, "recordStep", Q_ARG(QString, s("7")),
                                          Q_ARG(QString, s("openfilebegin")), Q_ARG(quint64, 5)));
    const auto posted = host->dataCollection().events().back();
    EXPECT_EQ(posted.name, s("cloud_to_local_step"));
    EXPECT_EQ(posted.fields.value(s("fileid")) + posted.fields.value(s("time")), s("75"));
    EXPECT_EQ(static_cast<CloudToLocalSteps*>(collector)->steps().last().name, s("openfilebegin"));
}

} // namespace
