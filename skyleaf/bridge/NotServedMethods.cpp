#include "bridge/NHelioCloudDocsAsynJsObj.h"

#include "zeolite/NxLoggerLite.h"
#include "zeolite/NxWebViewJSContext.h"

// The script methods that are not served yet: each says so to the page instead of pretending a success.

namespace {

/** Some methods leave a trace of every call: the qualified name and the source line. */
void traceEntry(const char* method, int line)
{
    NxLoggerLite::writeInfo(
        QStringLiteral("NHelioCloudDocsAsynJsObj"),
        QStringLiteral("<NHelioCloudDocsAsynJsObj::%1#%2>").arg(QLatin1String(method)).arg(line));
}

} // namespace

#define SKYLEAF_ANSWER_NOT_SERVED(method)                                                                    \
    void NHelioCloudDocsAsynJsObj::method(NxWebViewJSContext& context)                                       \
    {                                                                                                        \
        setReplyStatus(context, false,                                                                       \
                       QStringLiteral("%1 is not available yet").arg(QStringLiteral(#method)));              \
    }

SKYLEAF_ANSWER_NOT_SERVED(getClipboardData)
SKYLEAF_ANSWER_NOT_SERVED(setClipboardData)
SKYLEAF_ANSWER_NOT_SERVED(tavaLogin)
SKYLEAF_ANSWER_NOT_SERVED(tavaLogout)
SKYLEAF_ANSWER_NOT_SERVED(tavaCheckLogined)
SKYLEAF_ANSWER_NOT_SERVED(tavaOpenVipUrl)
SKYLEAF_ANSWER_NOT_SERVED(openFileByCloud)
SKYLEAF_ANSWER_NOT_SERVED(gotoH5Page)
SKYLEAF_ANSWER_NOT_SERVED(openProcessOnFile)
SKYLEAF_ANSWER_NOT_SERVED(getRoamingMode)
SKYLEAF_ANSWER_NOT_SERVED(setRoamingMode)
SKYLEAF_ANSWER_NOT_SERVED(writeClipboard)
SKYLEAF_ANSWER_NOT_SERVED(readClipboard)
SKYLEAF_ANSWER_NOT_SERVED(shareFile)
SKYLEAF_ANSWER_NOT_SERVED(checkNetwork)
SKYLEAF_ANSWER_NOT_SERVED(getVlt_sid)
SKYLEAF_ANSWER_NOT_SERVED(showVipUpgradeDialog)
SKYLEAF_ANSWER_NOT_SERVED(upgradeVip)
SKYLEAF_ANSWER_NOT_SERVED(showUserSecureIdentityDialog)
SKYLEAF_ANSWER_NOT_SERVED(openDocsOnlineFile)
SKYLEAF_ANSWER_NOT_SERVED(showNetDetect)
SKYLEAF_ANSWER_NOT_SERVED(openVirtualCloudDisk)
SKYLEAF_ANSWER_NOT_SERVED(callFileUploader)
SKYLEAF_ANSWER_NOT_SERVED(uploadFileDrag)
SKYLEAF_ANSWER_NOT_SERVED(showFileUploadProgress)
SKYLEAF_ANSWER_NOT_SERVED(showFileDownloadProgress)
SKYLEAF_ANSWER_NOT_SERVED(fileUploadListener)
SKYLEAF_ANSWER_NOT_SERVED(callFileDownload)
SKYLEAF_ANSWER_NOT_SERVED(fileDownloadListener)
SKYLEAF_ANSWER_NOT_SERVED(registerCookieUpdateHandler)
SKYLEAF_ANSWER_NOT_SERVED(openProcessOnPage)
SKYLEAF_ANSWER_NOT_SERVED(isSupportParallelCloseCollaboration)
SKYLEAF_ANSWER_NOT_SERVED(notifyCloseCooperationResult)

#undef SKYLEAF_ANSWER_NOT_SERVED

#define SKYLEAF_TRACE_AND_ANSWER_NOT_SERVED(method)                                                          \
    void NHelioCloudDocsAsynJsObj::method(NxWebViewJSContext& context)                                       \
    {                                                                                                        \
        traceEntry(#method, __LINE__);                                                                       \
        setReplyStatus(context, false,                                                                       \
                       QStringLiteral("%1 is not available yet").arg(QStringLiteral(#method)));              \
    }

SKYLEAF_TRACE_AND_ANSWER_NOT_SERVED(openFile)
SKYLEAF_TRACE_AND_ANSWER_NOT_SERVED(openFileEx)
SKYLEAF_TRACE_AND_ANSWER_NOT_SERVED(isSupportSendFile)
SKYLEAF_TRACE_AND_ANSWER_NOT_SERVED(sendFile)

#undef SKYLEAF_TRACE_AND_ANSWER_NOT_SERVED

// Transfers, sending and stopped collaborations have nothing to report while their methods are not served.

void NHelioCloudDocsAsynJsObj::notifyLoginStatus() {}

void NHelioCloudDocsAsynJsObj::onNotifyStopCollaboration(const QJsonObject&) {}

void NHelioCloudDocsAsynJsObj::onGetUploadStateTimerTimeout() {}

void NHelioCloudDocsAsynJsObj::onGetDownloadStateTimerTimeout() {}

void NHelioCloudDocsAsynJsObj::onSendFile(const QVariantMap&) {}
