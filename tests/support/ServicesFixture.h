#pragma once

#include "base/NClock.h"
#include "base/NReadOnce.h"
#include "nrt/NrtHost.h"
#include "zeolite/ZeoliteHost.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <memory>

/** The real runtime and shared services over a temporary directory; nothing read before is remembered. */
class ServicesFixture : public testing::Test
{
protected:
    static constexpr int addOnGroup = 60;

    void SetUp() override
    {
        runtime.dataDir = directory.path();
        nreadonce::resetForTest();
    }

    void TearDown() override
    {
        nclock::setNowForTest({});
        host.reset();
    }

    void start()
    {
        nrt::host::configure(runtime);
        host = std::make_unique<ZeoliteHost>(services);
    }

    /** What the next start of the suite finds: the stores stay, what was read is forgotten. */
    void restart()
    {
        host.reset();
        nreadonce::resetForTest();
        start();
    }

    /** An item of the add-on's group, as JSON text. */
    void setItem(int item, const char* json)
    {
        const QJsonDocument document = QJsonDocument::fromJson(json);
        ASSERT_TRUE(document.isObject()) << json;
        host->configCentre().set(addOnGroup, item, document.object());
    }

    static void setNow(const QDateTime& now)
    {
        nclock::setNowForTest([now] { return now; });
    }

    QTemporaryDir directory;
    nrt::host::Setup runtime;
    zeolite::Setup services;
    std::unique_ptr<ZeoliteHost> host;
};
