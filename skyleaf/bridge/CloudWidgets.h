#pragma once

#include <memory>

class NVltCloudWidgets;

namespace cloudwidgets {

/** The windows of the cloud module for this add-on; null when the module is missing or of another kind. */
std::unique_ptr<NVltCloudWidgets> create();

} // namespace cloudwidgets
