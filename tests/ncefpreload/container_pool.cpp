#include "ncefpreload/ContainerPool.h"

#include "ncefpreload/NCefPreload.h"
#include "support/FakeBrowserWidget.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

using namespace ncefpreload;

namespace {

const QString name = QStringLiteral("pages");
constexpr qint64 mebibyte = 1024 * 1024;

/** Makes views without a browser; loads and crashes are the test's. */
class FakePreparedViews final : public nheliostat::host::PreparedViews
{
public:
    NxWebViewContainer* make(QWidget* holder, Listener listener) override
    {
        auto* const view = new FakeWebViewContainer(holder);
        listeners.insert(view, std::move(listener));
        made << view;
        return view;
    }
    void serve(NxWebViewContainer*, const QVector<NHelioLocalPathPair>& pairs) override { served += pairs; }
    void load(NxWebViewContainer*, const QUrl& url) override { loads << url.toString(); }
    void wipe(NxWebViewContainer* view, QWidget* holder, Listener listener) override
    {
        view->setParent(holder);
        listeners.insert(view, std::move(listener));
        wiped << view;
    }
    qint64 renderer(const NxWebViewContainer* view) const override { return dead.contains(view) ? 0 : 1; }
    NHelioBrowserWidgetBase* makeBrowser(QWidget* parent, const QString& id, const QString& browserName,
                                         NxWebViewContainer* view) override
    {
        handed << view;
        return new FakeBrowserWidget(parent, id, browserName);
    }

    void deliverLoad(int index, bool ok) { listeners.value(made.at(index)).loaded(ok); }
    void deliverCrash(int index) { listeners.value(made.at(index)).gone(); }

    QMap<NxWebViewContainer*, Listener> listeners;
    QVector<QPointer<NxWebViewContainer>> made;
    QVector<NxWebViewContainer*> wiped, handed;
    QVector<const NxWebViewContainer*> dead;
    QVector<NHelioLocalPathPair> served;
    QStringList loads;
};

class ContainerPoolTest : public testing::Test
{
protected:
    void SetUp() override
    {
        frontEnd.officeType = QStringLiteral("w");
        frontEnd.domain = QStringLiteral("https://docs.test");
        frontEnd.url = QUrl(QStringLiteral("https://docs.test/index-w.html"));
        frontEnd.version = QStringLiteral("1.0");
        frontEnd.directories = {{QStringLiteral("https://docs.test/"), QStringLiteral("/package/")}};
    }

    void begin(int perName = 1)
    {
        ContainerPool::Setup setup;
        setup.views = &views;
        setup.perName = perName;
        setup.idleMs = 0;
        setup.frontEnd = [this] { return frontEnd; };
        setup.version = [this](const QString&) { return inForce; };
        setup.residentBytes = [this](qint64 process) { return process > 0 ? resident : 0; };
        setup.availableBytes = [this] { return available; };
        pool = std::make_unique<ContainerPool>(std::move(setup));
    }

    static void turn()
    {
        for (int i = 0; i < 3; ++i) {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }

    bool make(int index = 0, bool ok = true)
    {
        const bool isWanted = pool->want(name);
        turn();
        if (views.made.size() > index)
            views.deliverLoad(index, ok);
        return isWanted;
    }

    bool hand() { return pool->hand(name, &page, &creator, info); }
    QVariant property(const char* key) const { return views.made.first()->property(key); }

    FakePreparedViews views;
    FrontEnd frontEnd;
    QString inForce = QStringLiteral("1.0");
    qint64 resident = 100 * mebibyte;
    qint64 available = 4096 * mebibyte;
    QWidget page;
    NHelioBrowserCreator creator;
    NHelioBrowserCreateInfo info{QStringLiteral("id"), QStringLiteral("name"), nullptr, 2};
    std::unique_ptr<ContainerPool> pool;
};

TEST_F(ContainerPoolTest, OneIsMadeLaterAndHandedOutOnceItsFrontEndIsThere)
{
    begin();
    EXPECT_FALSE(hand());
    EXPECT_TRUE(pool->want(name) && pool->want(name));
    EXPECT_TRUE(views.made.isEmpty());
    turn();
    EXPECT_EQ(views.made.size(), 1);
    EXPECT_EQ(views.served, frontEnd.directories);
    EXPECT_FALSE(hand()) << "it is still loading";
    views.deliverLoad(0, true);
    EXPECT_TRUE(property(docFrameworkProperty).toBool());
    EXPECT_EQ(property(domainProperty), frontEnd.domain);
    EXPECT_EQ(property(officeTypeProperty).toString(), QStringLiteral("w"));
    EXPECT_EQ(property(frontVerProperty), QString());
    EXPECT_FALSE(pool->hand(QStringLiteral("others"), &page, &creator, info));

    inForce = QStringLiteral("1.1");
    EXPECT_TRUE(hand());
    EXPECT_FALSE(hand());
    EXPECT_EQ(property(frontVerProperty).toString(), QStringLiteral("1.0")) << "the package was upgraded";
    EXPECT_FALSE(creator.isCreateSucceeded()) << "it comes at a later turn";
    turn();
    EXPECT_TRUE(creator.isCreateSucceeded());
    EXPECT_EQ(views.handed.first(), views.made.first());
}

TEST_F(ContainerPoolTest, AFrontEndThatFailsLeavesABrowserAndOneOfTheSiteIsNotOffered)
{
    for (const bool isLocal : {true, false}) {
        views = {};
        frontEnd.version = isLocal ? QStringLiteral("1.0") : QString();
        begin();
        make(0, !isLocal);
        if (isLocal) {
            EXPECT_EQ(views.loads.last(), QStringLiteral("about:blank"));
            EXPECT_FALSE(hand());
            views.deliverLoad(0, true);
        }
        EXPECT_EQ(property(docFrameworkProperty), false);
        EXPECT_TRUE(hand());
        turn();
    }
}

TEST_F(ContainerPoolTest, NumberAndMemoryAreBounded)
{
    begin(9);
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(make(i));
    EXPECT_EQ(views.made.size(), 3);
    EXPECT_FALSE(pool->want(QStringLiteral("others")));
    resident = 1000 * mebibyte;
    EXPECT_FALSE(hand());
    turn();
    EXPECT_EQ(std::count(views.made.begin(), views.made.end(), nullptr), 3) << "too large ones are dropped";

    EXPECT_TRUE(make(3));
    turn();
    EXPECT_TRUE(views.made.at(3).isNull()) << "too large from the beginning";
    available = 100 * mebibyte;
    EXPECT_FALSE(pool->want(name));
}

TEST_F(ContainerPoolTest, WhatDiesWhileItWaitsIsDropped)
{
    begin();
    make();
    views.dead << views.made.first();
    EXPECT_FALSE(hand()) << "although nobody was told yet";
    make(1);
    views.deliverCrash(1);
    turn();
    EXPECT_TRUE(views.made.at(1).isNull());
    make(2);
    EXPECT_TRUE(hand());
    views.deliverCrash(2);
    turn();
    EXPECT_TRUE(creator.isCreateSucceeded() && !views.handed.first())
        << "a promised browser comes all the same";
}

TEST_F(ContainerPoolTest, APageThatIsGoneByThenLeavesTheContainer)
{
    begin();
    make();
    {
        QWidget shortLived;
        EXPECT_TRUE(pool->hand(name, &shortLived, &creator, info));
    }
    turn();
    EXPECT_TRUE(views.handed.isEmpty());
    EXPECT_TRUE(hand());
}

TEST_F(ContainerPoolTest, AContainerIsTakenBackWhileThereIsRoomAndItLives)
{
    begin();
    FakeWebViewContainer given(&page);
    available = 100 * mebibyte;
    EXPECT_FALSE(pool->takeBack(name, &given));
    available = 4096 * mebibyte;
    views.dead << &given;
    EXPECT_FALSE(pool->takeBack(name, &given));
    views.dead.clear();
    given.setProperty(officeTypeProperty, QStringLiteral("s"));
    EXPECT_TRUE(pool->takeBack(name, &given));
    EXPECT_EQ(views.wiped, QVector<NxWebViewContainer*>{&given});
    EXPECT_FALSE(given.property(officeTypeProperty).isValid());
    EXPECT_FALSE(hand()) << "its front end is loaded anew";
    FakeWebViewContainer second;
    EXPECT_FALSE(pool->takeBack(name, &second));
    views.listeners.value(&given).loaded(true);
    EXPECT_TRUE(given.property(docFrameworkProperty).toBool());
    EXPECT_TRUE(hand());
    turn();
    given.setParent(nullptr);
    pool->close();
    EXPECT_FALSE(pool->takeBack(name, &second) || pool->want(name));
}

TEST(FrontEnds, TheKindThatWasOpenedMostIsPrepared)
{
    const auto day = [](const QVariantMap& kinds) { return QVariant(kinds); };
    const QString w = QStringLiteral("w"), s = QStringLiteral("s"), total = QStringLiteral("total");
    EXPECT_EQ(mostUsedOfficeType({}), QString());
    EXPECT_EQ(mostUsedOfficeType({{QStringLiteral("1"), QStringLiteral("spoilt")}}), QString());
    EXPECT_EQ(
        mostUsedOfficeType({{QStringLiteral("1"), day({{total, 5}, {w, 3}, {s, 2}})},
                            {QStringLiteral("2"), day({{total, 9}, {s, 2}, {QStringLiteral("exe"), 7}})}}),
        s);
}

} // namespace
