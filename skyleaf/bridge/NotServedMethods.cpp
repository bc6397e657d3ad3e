#include "bridge/NHelioCloudDocsAsynJsObj.h"

#include "zeolite/NxWebViewJSContext.h"

// The script methods that are not served yet: each says so to the page instead of pretending a success.

#define SKYLEAF_ANSWER_NOT_SERVED(method)                                                                    \
    void NHelioCloudDocsAsynJsObj::method(NxWebViewJSContext& context)                                       \
    {                                                                                                        \
        setReplyStatus(context, false,                                                                       \
                       QStringLiteral("%1 is not available yet").arg(QStringLiteral(#method)));              \
    }

SKYLEAF_ANSWER_NOT_SERVED(getClipboardData)
SKYLEAF_ANSWER_NOT_SERVED(setClipboardData)
SKYLEAF_ANSWER_NOT_SERVED(writeClipboard)
SKYLEAF_ANSWER_NOT_SERVED(readClipboard)

#undef SKYLEAF_ANSWER_NOT_SERVED
