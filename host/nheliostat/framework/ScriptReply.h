#pragma once

#include <QString>

class NxWebViewJSContext;

/** The members that replies to script calls have in common. */
namespace nheliostat::scriptreply {

/** "callstatus" = "ok". */
void succeed(NxWebViewJSContext& context);
/** "callstatus" = "ok" and "result" = the text. */
void succeed(NxWebViewJSContext& context, const QString& result);
/** "callstatus" = "error" and "errormsg" = the message. */
void fail(NxWebViewJSContext& context, const QString& message);

} // namespace nheliostat::scriptreply
