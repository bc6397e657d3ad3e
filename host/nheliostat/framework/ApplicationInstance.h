#pragma once

class NHelioApplication;

namespace nheliostat::host {

/** What NHelioApplication::instance() answers from now on; null for none. Not owned. */
void setApplication(NHelioApplication* application);

} // namespace nheliostat::host
