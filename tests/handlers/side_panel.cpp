#include "handlers/NSorrelDockpanelJsHandler.h"

#include "handlers/HandlerFixture.h"
#include "support/LogRecorder.h"

#include <QRegularExpression>

namespace {

class SidePanel : public HandlerFixture
{
protected:
    void SetUp() override
    {
        HandlerFixture::SetUp();
        setHandler(new NSorrelDockpanelJsHandler(object.get(), object.get()));
    }

    FakeDockPanels panels;
    FakeMainWindow window;
};

TEST_F(SidePanel, MessagesReachThePanels)
{
    const LogRecorder log;
    const QJsonObject message = json(R"({"source":"s","data":{"n":1}})");
    EXPECT_EQ(call("notifyDockPanelSorrelMsg", message), "");
    shell.window = &window;
    EXPECT_EQ(call("notifyDockPanelSorrelMsg", message), "");
    window.panels = &panels;
    EXPECT_EQ(call("notifyDockPanelSorrelMsg"), "");
    EXPECT_TRUE(panels.messages.isEmpty());

    EXPECT_EQ(call("notifyDockPanelSorrelMsg", message), R"({"success":true})");
    panels.taken = false;
    EXPECT_EQ(call("notifyDockPanelSorrelMsg", message),
              R"({"errorMsg":"dockPanelNotification","success":false})");
    EXPECT_EQ(panels.messages.value(0),
              QStringLiteral("container|dockPanelNotification|"
                             R"({"data":{"n":1},"docSource":"online","receiverId":"dockpanel_sorrel"}|s)"));
    EXPECT_FALSE(panels.hadReceiver);
    const QString line = QStringLiteral(
        "info [skyleaf] __sorrel_dockpanel__>NSorrelDockpanelJsHandler::notifyDockPanelSorrelMsg@43: "
        R"(from frontend msg: {"data":{"n":1},"source":"s"})");
    EXPECT_EQ(log.lines(), (QStringList{line, line, line}));
}

TEST_F(SidePanel, TheEntryIsVisibleWhereThePanelsSaySo)
{
    const QByteArray hidden = R"({"result":false,"success":true})";
    EXPECT_EQ(call("isDockPanelEntryVisible"), hidden);
    shell.window = &window;
    EXPECT_EQ(call("isDockPanelEntryVisible"), hidden);
    window.panels = &panels;
    EXPECT_EQ(call("isDockPanelEntryVisible"), hidden);
    panels.visible = QStringLiteral("dockpanel_sorrel");
    EXPECT_EQ(call("isDockPanelEntryVisible"), R"({"result":true,"success":true})");
}

TEST_F(SidePanel, TaskIdsDiffer)
{
    const QRegularExpression form(
        QStringLiteral(R"(^\{"success":true,"task_id":"onlinefront_\{[0-9a-f-]{36}\}"\}$)"));
    const QString first = QString::fromUtf8(call("generateTaskId"));
    EXPECT_TRUE(form.match(first).hasMatch()) << first.toStdString();
    EXPECT_NE(QString::fromUtf8(call("generateTaskId")), first);
}

} // namespace
