#include "nheliostat/framework/ScriptReply.h"

#include "zeolite/NxWebViewJSContext.h"

namespace nheliostat::scriptreply {

void succeed(NxWebViewJSContext& context)
{
    context.reply()["callstatus"] = "ok";
}

void succeed(NxWebViewJSContext& context, const QString& result)
{
    succeed(context);
    context.reply()["result"] = result.toStdString();
}

void fail(NxWebViewJSContext& context, const QString& message)
{
    context.reply()["callstatus"] = "error";
    context.reply()["errormsg"] = message.toStdString();
}

} // namespace nheliostat::scriptreply
