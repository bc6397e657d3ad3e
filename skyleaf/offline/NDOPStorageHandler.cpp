#include "offline/NDOPStorageHandler.h"

#include "proxy/NDOPConfig.h"

void NDOPStorageHandler::funcSwitch(NxWebViewJSContext& context)
{
    context.reply()["callstatus"] = "ok";
    context.reply()["result"] = NDocsOfflinePage::NDOPConfig::instance().isOfflineEditEnabled(m_officeType);
}
