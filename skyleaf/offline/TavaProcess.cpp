#include "offline/TavaProcess.h"

#include "base/NDocsLog.h"
#include "zeolite/NCloudSvrProxy.h"
#include "zeolite/NCoreApplication.h"

void runTavaProcessIfNotExists()
{
    NCoreApplication* core = NCoreApplication::instance();
    NCloudSvrProxy* service = core ? core->getCloudSvrProxy() : nullptr;
    if (!service || service->checkTavaRunning())
        return;
    service->startTavaProcess({}, false);
    ndocslog::info(QStringLiteral("run vltcloudsvr.exe"),
                   "NDOPStorageInfoHandler::runTavaProcessIfNotExists");
}
