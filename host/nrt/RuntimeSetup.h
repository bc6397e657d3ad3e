#pragma once

#include "nrt/NrtHost.h"

#include <functional>
#include <memory>

/** The set-up in force, shared by all parts of the runtime. Any thread. */
namespace nrt::runtime {

/** Never null; unchanging, so a reader keeps a consistent set-up. */
std::shared_ptr<const host::Setup> setup();

/** Puts a changed copy in force. */
void changeSetup(const std::function<void(host::Setup&)>& change);

/** Fills the directories that the set-up leaves empty. */
host::Setup withDefaultDirectories(host::Setup setup);

} // namespace nrt::runtime
