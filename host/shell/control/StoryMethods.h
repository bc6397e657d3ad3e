#pragma once

#include "shell/control/RpcMethod.h"

namespace shell {

class StoryRecorder;

/** The control method "story.export"; null: data collection is off. `recorder` outlives its use. */
rpc::Method storyExportMethod(StoryRecorder* recorder);

} // namespace shell
