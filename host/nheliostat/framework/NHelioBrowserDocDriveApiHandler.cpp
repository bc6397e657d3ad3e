#include "nheliostat/framework/NHelioBrowserDocDriveApiHandler.h"

#include "nheliostat/framework/ScriptReply.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NDomainMgr.h"

namespace scriptreply = nheliostat::scriptreply;

void NHelioBrowserDocDriveApiHandler::getDriveInfo(NxWebViewJSContext& context)
{
    NCoreApplication* services = NCoreApplication::instance();
    const NDomainMgr* domains = services ? services->getDomainMgr() : nullptr;
    const QString drive = domains ? domains->getDomainUrl(QStringLiteral("drive")) : QString();
    if (drive.isEmpty())
        scriptreply::fail(context, QStringLiteral("no drive in this deployment"));
    else
        scriptreply::succeed(context, drive);
}
