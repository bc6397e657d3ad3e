#include "shell/story/OpenStory.h"
#include "shell/story/StoryJson.h"
#include "shell/story/StoryLayout.h"
#include "shell/story/StoryPicture.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QXmlStreamReader>

namespace {

using namespace shell::story;

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

const QString site = s("https://docs.test");
const QString document = site + s("/p/7?officeType=w&traceId=t1");
constexpr qint64 epoch = 1700000000000;

/** The notes of an open, in the order in which a shell makes them. */
struct Telling
{
    Notes notes;

    void event(qint64 at, const char* name, QMap<QString, QString> fields)
    {
        fields.insert(s("trace_id"), s("t1"));
        fields.insert(s("notify_url"), document);
        notes.push_back(Event{s(name), fields, epoch + at});
    }
    void step(qint64 at, const char* step, const char* type = "w", const QMap<QString, QString>& more = {})
    {
        QMap<QString, QString> fields{{s("step"), s(step)}, {s("office_type"), s(type)}};
        for (auto each = more.begin(); each != more.end(); ++each)
            fields.insert(each.key(), each.value());
        event(at, "docs_cloud_open", fields);
    }
    void decision(qint64 at, const char* step, const char* error = "no_error")
    {
        event(at, "docs_localproxy_dop_result", {{s("step_name"), s(step)}, {s("error_msg"), s(error)}});
    }
    void reply(qint64 at, const char* name, const QString& path, int took, int error = 0)
    {
        notes.push_back(Event{s("docs_localproxy_dop_network"),
                              {{s("name"), s(name)},
                               {s("url"), site + path},
                               {s("usetime"), QString::number(took)},
                               {s("result"), s(error ? "0" : "1")},
                               {s("errorcode"), QString::number(error)}},
                              epoch + at});
    }
    void request(qint64 at, const QString& url, AnsweredBy by, double took, int status = 200, int bytes = 100)
    {
        notes.push_back(BrowserNote{3, s("GET"), url, by, status, bytes, took, epoch + at});
    }
    void page(qint64 at, const char* what, const char* title = "")
    {
        notes.push_back(PageNote{3, s(what), s(title), epoch + at});
    }
    OpenStory only() const
    {
        const QVector<OpenStory> stories = storiesOf(notes);
        EXPECT_EQ(stories.size(), 1);
        return stories.value(0);
    }
};

const QString openFile = s("/api/v3/office/file/7/preopen/word");

/** The page was made at 0, told to load at 20; its document was there at 300. */
Telling localOpen()
{
    Telling t;
    t.page(1, "created");
    t.decision(40, "set_start");
    t.step(50, "load");
    t.reply(90, "vcs", s("/api/v3/office/prefetch/vcs/7"), 75);
    t.request(120, document, AnsweredBy::Local, 4);
    t.reply(180, "open_file", openFile, 150);
    t.request(182, site + openFile + s("?proxy=true&timeout=5000"), AnsweredBy::Local, 42.5, 200, 4436);
    t.event(302, "docs_cloud_opentime",
            {{s("steps"), s("create_succeeded;network_request;init_self_load;browser_created;initself;"
                            "load_start;web_file_ready;")},
             {s("create_succeeded"), s("10")},
             {s("network_request"), s("3")},
             {s("init_self_load"), s("20")},
             {s("browser_created"), s("32")},
             {s("initself"), s("28")},
             {s("load_start"), s("110")},
             {s("web_file_ready"), s("302")}});
    t.step(303, "web_file_ready");
    t.page(310, "titleChanged", "Plan");
    t.page(320, "loadFinished");
    return t;
}

TEST(OpenStory, TellsOfALocalOpen)
{
    const OpenStory story = localOpen().only();
    EXPECT_EQ(story.outcome(), Outcome::Ready);
    EXPECT_EQ(story.page, 3);
    EXPECT_EQ(story.title, s("Plan"));
    EXPECT_EQ(story.beganAt, epoch) << "the page was made for this open";
    EXPECT_DOUBLE_EQ(story.totalMs(), 302);
    EXPECT_DOUBLE_EQ(story.loadAskedMs.value_or(-1), 20);
    EXPECT_DOUBLE_EQ(story.loadedMs.value_or(-1), 320);
    ASSERT_EQ(story.steps.size(), 7);
    EXPECT_DOUBLE_EQ(story.steps.at(1).atMs, 10) << "timed: from the earliest time that the order allows";
    EXPECT_DOUBLE_EQ(story.steps.at(4).atMs, 20);
    EXPECT_DOUBLE_EQ(story.steps.at(4).durationMs.value_or(-1), 28);
    ASSERT_EQ(story.waits.size(), 1) << "the type was known: the load did not wait";
    EXPECT_DOUBLE_EQ(story.waits.first().fromMs, 139.5);
    EXPECT_DOUBLE_EQ(story.waits.first().untilMs, 180);
    EXPECT_EQ(story.serverRequests.at(story.waits.first().serverRequest).bytes.value_or(-1), 4436);
    EXPECT_TRUE(story.troubles.isEmpty());

    const QJsonObject json = toJson(story);
    EXPECT_EQ(json.value(s("localAnswers")).toArray().at(1).toObject().value(s("reply")), s("open_file"));
    EXPECT_EQ(json.value(s("waits")).toArray().first().toObject().value(s("forReply")), s("open_file"));
}

TEST(OpenStory, LoadWaitsForTheVersionCheck)
{
    for (const char* how : {"no type", "another version", "in vain", "type known"}) {
        Telling t;
        t.step(10, "load", qstrcmp(how, "no type") == 0 ? "" : "w");
        t.reply(130, "vcs", s("/api/v3/office/prefetch/vcs/7"), 105); // asked a little after the load
        if (qstrcmp(how, "another version") == 0)
            t.decision(132, "update_start");
        if (qstrcmp(how, "in vain") == 0)
            t.event(110, "docs_cloud_vcsrequesttimeout", {});
        const OpenStory story = t.only();
        if (qstrcmp(how, "type known") == 0) {
            EXPECT_TRUE(story.waits.isEmpty());
            continue;
        }
        ASSERT_EQ(story.waits.size(), 1) << how;
        EXPECT_EQ(story.waits.first().browserRequest, -1) << how;
        EXPECT_EQ(story.waits.first().gaveUp, qstrcmp(how, "in vain") == 0);
        EXPECT_DOUBLE_EQ(story.waits.first().untilMs - story.waits.first().fromMs,
                         story.waits.first().gaveUp ? 100 : 105);
    }
}

TEST(OpenStory, SaysWhatWentWrong)
{
    Telling t;
    t.decision(5, "load_plugin", "direct_plugin_load_error");
    t.step(10, "load");
    t.reply(30, "open_file", openFile, 15, 7);
    t.request(50, document, AnsweredBy::Network, 20, 502);
    t.step(60, "load_error", "w", {{s("error_msg"), s("ERR_X")}, {s("error_code"), s("-102")}});
    const OpenStory story = t.only();
    EXPECT_EQ(story.outcome(), Outcome::Failed);
    ASSERT_EQ(story.troubles.size(), 4);
    const char* texts[] = {"direct_plugin_load_error", "error 7", "status 502", "ERR_X (-102)"};
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(story.troubles.at(i).text.contains(s(texts[i])))
            << story.troubles.at(i).text.toStdString();
    const QString svg = QString::fromUtf8(toSvg(story, {}));
    EXPECT_TRUE(svg.contains(s("What went wrong")) && svg.contains(s("no local package is installed")));
}

TEST(OpenStory, SecondLoadAndSecondDocumentAreStoriesOfTheirOwn)
{
    Telling t = localOpen();
    t.step(900, "load");
    t.request(950, document, AnsweredBy::Network, 9);
    t.step(990, "web_file_ready");
    QVector<OpenStory> stories = storiesOf(t.notes);
    ASSERT_EQ(stories.size(), 2);
    EXPECT_EQ(stories.at(0).browserRequests.size(), 2);
    EXPECT_EQ(stories.at(1).count(AnsweredBy::Network), 1);
    EXPECT_EQ(stories.at(1).page, 3);
    EXPECT_DOUBLE_EQ(stories.at(1).totalMs(), 990 - 900);

    // Requests long after the document was there are counted, not kept.
    t.request(9000, site + s("/save"), AnsweredBy::Network, 5);
    stories = storiesOf(t.notes);
    EXPECT_EQ(stories.at(1).laterNetwork, 1);
}

TEST(OpenStory, LanesNeverOverlapAndManyRequestsAreGrouped)
{
    for (const int count : {3, 40, 200}) {
        for (const double width : {700.0, 1200.0}) {
            Telling t = localOpen();
            for (int i = 0; i < count; ++i) {
                const bool local = i % 2 == 0;
                t.request(200 + i % 90, site + s("/hybrid/weboffice-static/js/a%1.js").arg(i),
                          local ? AnsweredBy::Local : AnsweredBy::Network, 1 + i % 7,
                          i % 50 == 9 ? 404 : 200);
            }
            const Layout layout = layOut(lanesOf(t.only()), width, 100);
            double bottom = 100;
            for (const PlacedLane& lane : layout.lanes) {
                EXPECT_GE(lane.top, bottom);
                bottom = lane.top + lane.height;
                EXPECT_LE(lane.items.size(), 24);
                for (int i = 0; i < lane.items.size(); ++i) {
                    const QRectF own = lane.items.at(i).bar.united(lane.items.at(i).label);
                    EXPECT_GE(own.left(), layout.plotLeft - 5);
                    EXPECT_LE(own.right(), layout.plotRight + 5);
                    for (int j = 0; j < i; ++j)
                        EXPECT_FALSE(own.intersects(lane.items.at(j).bar.united(lane.items.at(j).label)));
                }
            }
        }
    }
}

TEST(OpenStory, PictureIsWellFormedWhateverTheTitle)
{
    for (const char* title : {"", "a <b> & \"c\"",
                              "预算表 2026 with a title that goes on and on and on and on and on "
                              "and on and on and on and on and on and on and on"}) {
        Telling t = localOpen();
        t.page(330, "titleChanged", title);
        QXmlStreamReader reader(toSvg(t.only(), {400, true}));
        while (!reader.atEnd())
            reader.readNext();
        EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    }
    EXPECT_TRUE(storiesOf({}).isEmpty());
}

} // namespace
