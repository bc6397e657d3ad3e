#include "offline/NDOPStorageHandler.h"

void NDOPStorageHandler::funcSwitch(NxWebViewJSContext& context)
{
    replyNotServed(context);
}
