#include "nheliostat/NHelioCloudSvrProxy.h"
#include "nheliostat/framework/ShellApplication.h"
#include "nrt/NrtHost.h"
#include "offline/NDOPInjectHtml.h"
#include "offline/NDOPResourceManager.h"
#include "zeolite/ZeoliteHost.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

// Injects a content of 1 MiB into a page of 1 MiB, and reads files of a package from memory.

namespace {

using NDocsOfflinePage::NDOPInjectHtml;
using NDocsOfflinePage::NDOPResourceManager;

constexpr int mebibyte = 1 << 20;
constexpr int packageFiles = 100;
constexpr int fileSize = 4096;

QByteArray repeated(const QByteArray& text, int size)
{
    return text.repeated(size / text.size() + 1).left(size);
}

/** Text of the Latin alphabet, the hardest case for whoever does more than the floor; or of many scripts. */
QByteArray contentText(bool plain)
{
    return plain ? repeated("{\"t\":\"The quick brown fox jumps over the lazy dog\",\"s\":12},", mebibyte)
                 : repeated("{\"t\":\"<b>Gr\xc3\xbc\xc3\x9f</b> \xe6\x96\x87\xe6\xa1\xa3 text\",\"s\":12},",
                            mebibyte / 48 * 48);
}

QByteArray pageText()
{
    return "<html><!--__INJECT__-->" + repeated("<p>The page of the front end.</p>\n", mebibyte);
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("the files cannot be written");
}

/** The floor: the content is escaped and becomes UTF-16 and UTF-8 again, the page is copied. */
void injectFloor(benchmark::State& state, bool plain)
{
    const QByteArray content = contentText(plain);
    const QByteArray page = pageText();
    for (auto _ : state) {
        QByteArray escaped = content;
        escaped.replace("</", "<\\/");
        const QByteArray text = QString::fromUtf8(escaped).toUtf8();
        const QByteArray copy(page.constData(), page.size());
        benchmark::DoNotOptimize(text.constData());
        benchmark::DoNotOptimize(copy.constData());
    }
}

void injectHtml(benchmark::State& state, bool plain, const QString& root)
{
    writeFile(root + QStringLiteral("/user/quillfile/1/sync/content.word"), contentText(plain));
    writeFile(root + QStringLiteral("/package/inject.json"), R"(["_LOCAL_INJECT_DATA", "_LOCAL_CONNID"])");
    NDOPInjectHtml filled;
    filled.setUrl(QStringLiteral("https://docs.test/p/1?localId=1"));
    filled.setPackagePaths(QStringLiteral("/sync"), QStringLiteral("/cache"));
    const QByteArray page = pageText();
    for (auto _ : state) {
        NDOPInjectHtml record = filled;
        const QByteArray injected =
            record.injectHtml(page, QStringLiteral("w"), root + QStringLiteral("/package"));
        if (injected.size() < page.size() + mebibyte / 2)
            state.SkipWithError("the content is not in the page");
    }
}

QStringList packagePaths(const QString& root)
{
    QStringList paths;
    for (int number = 0; number < packageFiles; ++number)
        paths << root + QStringLiteral("/package/weboffice-static/js/module-%1.js").arg(number);
    return paths;
}

/** Reads files in turn; `read` gives the bytes of a path. */
template <typename Read>
void readInTurn(benchmark::State& state, const QStringList& paths, Read read)
{
    int next = state.thread_index() * paths.size() / 2;
    for (auto _ : state) {
        const QByteArray bytes = read(paths.at(next));
        next = (next + 1) % paths.size();
        if (bytes.size() != fileSize)
            state.SkipWithError("the file is not there");
    }
    state.SetItemsProcessed(state.iterations());
}

/** Two threads read all files, both of them, or each its half. */
void readPreloaded(benchmark::State& state, const QString& root, bool together)
{
    const QStringList all = packagePaths(root);
    const int half = all.size() / 2;
    const QStringList paths = together ? all : QStringList(all.mid(state.thread_index() * half, half));
    const std::shared_ptr<NDOPResourceManager> manager = NDOPResourceManager::instance();
    readInTurn(state, paths, [&](const QString& path) { return manager->readPreloadedOrDisk(root, path); });
}

/** The floor: every thread has a map of its own and needs no lock. */
void readOwnMap(benchmark::State& state, const QString& root)
{
    const QStringList paths = packagePaths(root);
    QHash<QString, QByteArray> map;
    for (const QString& path : paths)
        map.insert(path, QByteArray(fileSize, 'x'));
    readInTurn(state, paths, [&](const QString& path) { return map.value(path); });
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication qtApplication(argc, argv);
    benchmark::Initialize(&argc, argv);
    const QTemporaryDir directory;
    nrt::host::Setup runtime;
    runtime.dataDir = directory.path();
    nrt::host::configure(runtime);
    const ZeoliteHost host({});
    ShellApplication::Setup shell;
    shell.user.localDataDir = directory.filePath(QStringLiteral("user"));
    const ShellApplication application(shell);

    for (const bool plain : {true, false}) {
        const std::string text = plain ? "plain" : "mixed";
        benchmark::RegisterBenchmark(("inject_floor/" + text).c_str(), injectFloor, plain);
        benchmark::RegisterBenchmark(("inject_html/" + text).c_str(), injectHtml, plain, directory.path());
    }
    const QStringList paths = packagePaths(directory.path());
    for (const QString& path : paths)
        writeFile(path, QByteArray(fileSize, 'x'));
    for (const int threads : {1, 2}) {
        const auto add = [threads](benchmark::internal::Benchmark* run) {
            run->Threads(threads)->UseRealTime();
        };
        add(benchmark::RegisterBenchmark("read_own_files", readPreloaded, directory.path(), false));
        add(benchmark::RegisterBenchmark("read_same_files", readPreloaded, directory.path(), true));
        add(benchmark::RegisterBenchmark("read_own_map", readOwnMap, directory.path()));
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
