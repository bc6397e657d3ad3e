#include "nheliostat/framework/ShellCollectInfoMgr.h"

#include "nheliostat/NHelioSubPage.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NDcInfoC.h"

#include <chrono>
#include <utility>

namespace {

constexpr qint64 longestOpenNs = 60LL * 1000 * 1000 * 1000;

qint64 steadyNs()
{
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(sinceStart).count();
}

} // namespace

ShellCollectInfoMgr::ShellCollectInfoMgr()
    : ShellCollectInfoMgr(&steadyNs)
{
}

ShellCollectInfoMgr::ShellCollectInfoMgr(Clock clock)
    : m_clock(std::move(clock))
{
}

void ShellCollectInfoMgr::markOpenStarted()
{
    m_openStart = m_clock();
}

qint64 ShellCollectInfoMgr::openStartTime() const
{
    return m_openStart > 0 && m_clock() - m_openStart <= longestOpenNs ? m_openStart : 0;
}

void ShellCollectInfoMgr::reportDownloadProhibited()
{
    NCoreApplication* services = NCoreApplication::instance();
    if (NDcInfoC* collection = services ? services->getDcInfo() : nullptr)
        collection->postGeneralEvent(QStringLiteral("download_prohibited_open"), NDcFields(), 0, 0, 1, false);
}

void ShellCollectInfoMgr::reportTabMenuClick(const QString& item, NHelioSubPage* subPage)
{
    NCoreApplication* services = NCoreApplication::instance();
    NDcInfoC* collection = services ? services->getDcInfo() : nullptr;
    if (!collection)
        return;
    const NDcFields fields{
        {QStringLiteral("item"), item},
        {QStringLiteral("pagetype"), QString::number(subPage ? subPage->pageType() : -1)},
    };
    collection->postGeneralEvent(QStringLiteral("tab_menu_click"), fields, 0, 0, 1, false);
}

void ShellCollectInfoMgr::sendCloudFileOpen(const QString& userId, const QString& source,
                                            const QString& action, int virtualType)
{
    NCoreApplication* services = NCoreApplication::instance();
    NDcInfoC* collection = services ? services->getDcInfo() : nullptr;
    if (!collection)
        return;
    const NDcFields fields{
        {QStringLiteral("userid"), userId},
        {QStringLiteral("source"), source},
        {QStringLiteral("action"), action},
        {QStringLiteral("virtualtype"), QString::number(virtualType)},
    };
    collection->postGeneralEvent(QStringLiteral("cloud_file_open"), fields, 0, 0, 1, false);
}
