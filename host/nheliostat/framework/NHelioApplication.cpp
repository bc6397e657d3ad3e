#include "nheliostat/NHelioApplication.h"

#include "nheliostat/framework/ApplicationInstance.h"

namespace {

NHelioApplication* runningApplication = nullptr;

} // namespace

NHelioApplication* NHelioApplication::instance()
{
    return runningApplication;
}

void nheliostat::host::setApplication(NHelioApplication* application)
{
    runningApplication = application;
}
