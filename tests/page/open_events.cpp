#include "page/OpenEvents.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

TEST(OpenEvents, OpenTimeListsTheStepsInOrder)
{
    NOpenSteps steps;
    steps.append(s("load_start"), 5);
    steps.append(s("load_finished"), 12);
    openevents::OpenTime event{
        &steps, 10000, s("https://d.test/p/1?startTime=9000&interruptUseTime=200&from=list"), s("w"), s("t")};
    const NDcFields fields = openevents::openTimeFields(event);
    EXPECT_EQ(fields.value(s("steps")), s("load_start;load_finished;"));
    EXPECT_EQ(fields.value(s("load_finished")), s("12"));
    EXPECT_EQ(fields.value(s("prepare_time")), s("800"));
    EXPECT_EQ(fields.value(s("from")), s("list"));
    const QJsonObject list = QJsonDocument::fromJson(fields.value(s("step_list")).toUtf8()).object();
    EXPECT_EQ(list.value(s("load_start")).toString(), s("5"));

    event.notifyUrl = s("https://d.test/p/1?interruptUseTime=200");
    EXPECT_EQ(openevents::openTimeFields(event).value(s("prepare_time")), s("0"));
}

TEST(OpenEvents, PerformanceRoundsTowardZero)
{
    const NDcFields fields = openevents::performanceFields({1000000, 2999999, 5000000}, 9999999);
    EXPECT_EQ(fields.value(s("prepare_time")), s("1"));
    EXPECT_EQ(fields.value(s("create_browser_time")), s("2"));
    EXPECT_EQ(fields.value(s("navigate_time")), s("4"));
}

} // namespace
