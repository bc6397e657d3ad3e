#include "page/OpenEvents.h"

#include "support/ShellFixture.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

using Values = QMap<QString, QString>;

Values ordered(const NDcFields& fields)
{
    Values values;
    for (auto each = fields.begin(); each != fields.end(); ++each)
        values.insert(each.key(), each.value());
    return values;
}

TEST(OpenEvents, ValuesOfPrecreateAndOpen)
{
    EXPECT_EQ(ordered(openevents::precreateFields({s("list"), true, false, s("t"), s("w"), 12})),
              (Values{{s("entry"), s("list")},
                      {s("init"), s("true")},
                      {s("used"), s("false")},
                      {s("trace_id"), s("t")},
                      {s("office_type"), s("w")},
                      {s("elapsed"), s("12")}}));
    EXPECT_EQ(ordered(openevents::openStepFields({s("load_error"), s("t"), s("https://d.test/p/1"), true,
                                                  false, s("w"), -102, s("refused"), s("https://d.test/x")})),
              (Values{{s("step"), s("load_error")},
                      {s("trace_id"), s("t")},
                      {s("notify_url"), s("https://d.test/p/1")},
                      {s("is_loaded"), s("true")},
                      {s("is_pre_pinited"), s("false")},
                      {s("office_type"), s("w")},
                      {s("error_code"), s("-102")},
                      {s("error_msg"), s("refused")},
                      {s("browser_url"), s("https://d.test/x")}}));
}

TEST(OpenEvents, OpenTimeListsTheStepsInOrder)
{
    NOpenSteps steps;
    steps.append(s("load_start"), 5);
    steps.append(s("load_finished"), 12);
    const openevents::OpenTime event{
        &steps, 10000, s("https://d.test/p/1?startTime=9000&interruptUseTime=200&from=list"), s("w"), s("t")};
    NDcFields fields = openevents::openTimeFields(event);
    const QJsonObject list = QJsonDocument::fromJson(fields.take(s("step_list")).toUtf8()).object();
    EXPECT_EQ(list, (QJsonObject{{s("load_start"), s("5")}, {s("load_finished"), s("12")}}));
    EXPECT_EQ(ordered(fields), (Values{{s("load_start"), s("5")},
                                       {s("load_finished"), s("12")},
                                       {s("steps"), s("load_start;load_finished;")},
                                       {s("prepare_time"), s("800")},
                                       {s("from"), s("list")},
                                       {s("office_type"), s("w")},
                                       {s("trace_id"), s("t")},
                                       {s("notify_url"), event.notifyUrl}}));
}

TEST(OpenEvents, PrepareTime)
{
    const struct
    {
        const char* query;
        const char* expected;
    } cases[] = {{"?interruptUseTime=200", "0"},
                 {"", "0"},
                 {"?startTime=9000", "1000"},
                 {"?startTime=9000&interruptUseTime=1500", "-500"},
                 {"?startTime=9000&interruptUseTime=soon", "1000"}};
    for (const auto& each : cases) {
        const NOpenSteps steps;
        const openevents::OpenTime event{&steps, 10000, s("https://d.test/p/1") + s(each.query), {}, {}};
        EXPECT_EQ(openevents::openTimeFields(event).value(s("prepare_time")), s(each.expected)) << each.query;
    }
}

TEST(OpenEvents, PerformanceRoundsTowardZero)
{
    EXPECT_EQ(ordered(openevents::performanceFields({1000000, 2999999, 5000000}, 9999999)),
              (Values{{s("prepare_time"), s("1")},
                      {s("create_browser_time"), s("2")},
                      {s("navigate_time"), s("4")}}));
    EXPECT_EQ(openevents::performanceFields({2999999, 1000000, 1}, 1).value(s("prepare_time")), s("-1"));
}

using PostedEvents = ShellFixture;

TEST_F(PostedEvents, ArgumentsOfEachForm)
{
    openevents::post(s("early"), {}); // no application yet
    start();
    openevents::post(s("a"), {{s("k"), s("v")}});
    openevents::post(s("b"), {}, 1000);
    openevents::postCrashInfo(3);
    const std::vector<DcEvent> events = host->dataCollection().events();
    ASSERT_EQ(events.size(), 3u);
    const int probabilities[] = {1, 1000, 1};
    for (std::size_t i = 0; i < events.size(); ++i) {
        EXPECT_EQ(events[i].first, 0);
        EXPECT_EQ(events[i].second, 0);
        EXPECT_EQ(events[i].probability, probabilities[i]);
        EXPECT_EQ(events[i].flag, i < 2) << "the last one's form has no flag";
    }
    EXPECT_EQ(events[2].name, s("perf_split_cef_crashbrowserinfo"));
    EXPECT_EQ(events[2].fields, (NDcOrderedFields{{s("olcount"), s("3")}}));
}

TEST_F(PostedEvents, NothingWithoutDataCollection)
{
    services.dataDir = directory.path();
    services.collectsData = false;
    start();
    openevents::post(s("a"), {});
    openevents::postCrashInfo(1);
    EXPECT_TRUE(host->dataCollection().events().empty());
    EXPECT_FALSE(QFile::exists(directory.filePath(s("events.jsonl"))));
}

} // namespace
