#include "zeolite/ZeoliteHost.h"

#include <gmock/gmock.h>

#include <atomic>
#include <stdexcept>

#include <QFile>
#include <QTemporaryDir>

#include "nrt/NrtHost.h"
#include "support/LogRecorder.h"
#include "zeolite/NThreadPool.h"
#include "zeolite/NxLoggerLite.h"

namespace {

TEST(ZeoliteHost, IsReachableWhileItLives)
{
    const QTemporaryDir directory;
    nrt::host::Setup runtime;
    runtime.dataDir = directory.path();
    runtime.applicationVersion = QStringLiteral("12.1");
    nrt::host::configure(runtime);
    zeolite::Setup setup;
    setup.dataDir = directory.path();
    setup.logFile = directory.filePath(QStringLiteral("shell.log"));
    setup.domains.insert(QStringLiteral("quill"), QStringLiteral("https://docs.example.test/"));
    setup.capabilities = 0x40001;

    EXPECT_EQ(NCoreApplication::instance(), nullptr);
    {
        ZeoliteHost host(setup);
        ASSERT_EQ(NCoreApplication::instance(), &host);
        EXPECT_EQ(host.getDomainMgr()->getDomainUrl(QStringLiteral("quill")),
                  QStringLiteral("https://docs.example.test"));
        EXPECT_TRUE(host.getDomainMgr()->getDomainUrl(QStringLiteral("drive")).isEmpty());
        EXPECT_TRUE(zeolite::isSupported(0x40000));
        EXPECT_FALSE(zeolite::isSupported(0x2));
        EXPECT_EQ(NxUserAgentUtil::getUserAgent(),
                  QStringLiteral("Mozilla/5.0 (X11; Linux x86_64) pc-office/12.1"));
        NxLoggerLite::writeInfo(QStringLiteral("skyleaf"), QStringLiteral("started--main"));
        host.getDcInfo()->postGeneralEvent(QStringLiteral("open"), NDcFields(), 0, 0, 1, true);

        int code = 0;
        EXPECT_FALSE(host.getCloudSvrProxy()->startDiagnosis(2, {}, code, {}));
        CloudServiceHooks hooks;
        hooks.startDiagnosis = [](int kind, const QString&, int& result, const QString&) {
            return (result = kind) == 3;
        };
        host.setCloudServiceHooks(hooks);
        EXPECT_TRUE(host.getCloudSvrProxy()->startDiagnosis(3, {}, code, {}));
        EXPECT_EQ(code, 3);
    }
    EXPECT_EQ(NCoreApplication::instance(), nullptr);
    EXPECT_FALSE(zeolite::isSupported(0x40000));
    QFile log(setup.logFile);
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    EXPECT_TRUE(log.readAll().endsWith(" info [skyleaf] started--main\n"));
    EXPECT_TRUE(QFile::exists(directory.filePath(QStringLiteral("events.jsonl"))));
}

TEST(ZeoliteHost, FinishesTasksAndLogsThoseThatThrow)
{
    const LogRecorder log;
    std::atomic<int> done{0};
    EXPECT_EQ(NThreadPool::globalInstance(), nullptr);
    {
        const PoolThreads pool;
        NThreadPool* const shared = NThreadPool::globalInstance();
        ASSERT_TRUE(shared);
        shared->submit(std::make_unique<NTask>([] { throw std::runtime_error("broken"); }));
        for (int i = 0; i < 100; ++i)
            shared->submit(std::make_unique<NTask>([&done] { ++done; }));
    }
    EXPECT_EQ(NThreadPool::globalInstance(), nullptr);
    EXPECT_EQ(done, 100);
    EXPECT_EQ(log.lines(),
              QStringList(QStringLiteral("error [zeolite] task failed: broken--PoolThreads::submit")));
}

} // namespace
