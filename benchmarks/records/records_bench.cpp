#include "base/NClock.h"
#include "nrt/NrtHost.h"
#include "nrt/kcc.h"
#include "proxy/NCloudDocsRecordManager.h"
#include "zeolite/ZeoliteHost.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QSaveFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

// The record store holds the front versions of 2,000 files; each round remembers one of them anew.

namespace {

constexpr int files = 2000;

QString fileId(int number)
{
    return QStringLiteral("file-%1").arg(number % files);
}

QByteArray recordsText()
{
    return nrt::kcc::value(nrt::kcc::pluginPerfix() + QStringLiteral("skyleaf/env_config_record"))
        .toString()
        .toUtf8();
}

void updateRecord(benchmark::State& state)
{
    int number = 0;
    for (auto _ : state)
        NCloudDocsRecordManager::instance()->updateEnvConfigRecord(fileId(++number), QStringLiteral("1.2.3"));
}

/** The floor: the records' object becomes JSON text, which replaces a file. */
void writeText(benchmark::State& state, const QString& path)
{
    const QJsonObject records = QJsonDocument::fromJson(recordsText()).object();
    for (auto _ : state) {
        QSaveFile file(path);
        file.open(QIODevice::WriteOnly);
        file.write(QJsonDocument(records).toJson(QJsonDocument::Compact));
        if (!file.commit())
            state.SkipWithError("the text cannot be written");
    }
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    const QTemporaryDir directory;
    nrt::host::Setup runtime;
    runtime.dataDir = directory.path();
    nrt::host::configure(runtime);
    const ZeoliteHost host({});
    for (int number = 0; number < files; ++number)
        NCloudDocsRecordManager::instance()->updateEnvConfigRecord(fileId(number), QStringLiteral("1.2.3"));

    benchmark::RegisterBenchmark("write_json_text", writeText,
                                 directory.filePath(QStringLiteral("records.json")));
    benchmark::RegisterBenchmark("update_record", updateRecord);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
