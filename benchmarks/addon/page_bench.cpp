#include "nheliostat/framework/ShellApplication.h"
#include "nrt/NrtHost.h"
#include "page/NHelioCloudDocsPage.h"
#include "zeolite/ZeoliteHost.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <malloc.h>
#include <vector>

// Constructs and destroys pages without a browser, beside bare pages of the framework, and prints the medians
// of several runs and the heap in use after each thousand as JSON.

namespace {

constexpr int pagesPerRun = 1000;
constexpr int runs = 7;

/** The least that a page can be. */
class BarePage final : public NHelioBrowserPageRoot
{
public:
    using NHelioBrowserPageRoot::NHelioBrowserPageRoot;
    int widgetType() const override { return 0; }
    QString pageTitle() const override { return {}; }
    NHelioSubPage* createSubPage(NHelioSubPages*) override { return nullptr; }
    void notify(const QString&) override {}
    void load() override {}
};

template <typename Make>
double microsecondsPerPage(Make make)
{
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < pagesPerRun; ++i)
        delete make();
    const double microseconds = double(timer.nsecsElapsed()) / 1000.0 / pagesPerRun;
    QCoreApplication::processEvents();
    return microseconds;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

double heapInUse()
{
    return double(mallinfo2().uordblks);
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QTemporaryDir directory;
    nrt::host::Setup runtime;
    runtime.dataDir = directory.path();
    nrt::host::configure(runtime);
    ZeoliteHost services{zeolite::Setup{}};
    ShellApplication shell{ShellApplication::Setup{}};

    std::vector<double> pages;
    std::vector<double> bare;
    std::vector<double> heap;
    // What the measurement itself keeps must not show as growth.
    for (std::vector<double>* values : {&pages, &bare, &heap})
        values->reserve(runs);
    for (int run = 0; run < runs; ++run) {
        pages.push_back(microsecondsPerPage([] { return new NHelioCloudDocsPage(nullptr, false, false); }));
        heap.push_back(heapInUse());
        bare.push_back(microsecondsPerPage([] { return new BarePage; }));
    }
    const QJsonObject result{{QStringLiteral("pageMicroseconds"), median(pages)},
                             {QStringLiteral("barePageMicroseconds"), median(bare)},
                             {QStringLiteral("heapAfterFirstThousand"), heap.at(0)},
                             {QStringLiteral("heapAfterSecondThousand"), heap.at(1)},
                             {QStringLiteral("heapAfterLastThousand"), heap.back()}};
    std::printf("%s\n", QJsonDocument(result).toJson(QJsonDocument::Compact).constData());
    return 0;
}
