#pragma once

#include "shell/control/RpcMethod.h"

namespace shell {

class DialogAnswers;

/** The control method "dialog.answer"; `answers` outlives its use. */
rpc::Method dialogAnswerMethod(DialogAnswers& answers);

} // namespace shell
