#include "base/NClock.h"

#include <chrono>

namespace nclock {
namespace {

std::function<QDateTime()>& replacement()
{
    static std::function<QDateTime()> function;
    return function;
}

} // namespace

QDateTime now()
{
    return replacement() ? replacement()() : QDateTime::currentDateTime();
}

QDate today()
{
    return now().date();
}

qint64 nowMs()
{
    return now().toMSecsSinceEpoch();
}

qint64 nowSeconds()
{
    return now().toSecsSinceEpoch();
}

qint64 monotonicNs()
{
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(sinceStart).count();
}

void setNowForTest(std::function<QDateTime()> now)
{
    replacement() = std::move(now);
}

} // namespace nclock
