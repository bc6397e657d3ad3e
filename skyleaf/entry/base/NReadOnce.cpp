#include "base/NReadOnce.h"

#include <atomic>

namespace nreadonce {
namespace {

std::atomic<quint64> currentGeneration{1};

} // namespace

quint64 generation()
{
    return currentGeneration;
}

void resetForTest()
{
    ++currentGeneration;
}

} // namespace nreadonce
