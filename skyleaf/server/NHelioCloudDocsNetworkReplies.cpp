#include "server/NHelioCloudDocsNetwork.h"

#include "base/NClock.h"
#include "base/NDocsLog.h"
#include "nrt/networkAccess.h"
#include "offline/NDOPResourceManager.h"
#include "proxy/NDOPSettings.h"
#include "server/DocsRequests.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NDcInfoC.h"

#include <QNetworkReply>

using NDocsOfflinePage::NDOPResourceManager;
using NDocsOfflinePage::NDOPResponseData;

namespace {

bool isFileReply(const QString& replyName)
{
    return replyName == docsrequests::envConfig || replyName == docsrequests::openFile ||
           replyName == docsrequests::ssrContent;
}

QByteArray cookieLines(const QVariantMap& headers)
{
    for (auto header = headers.begin(); header != headers.end(); ++header) {
        if (header.key().compare(QLatin1String("Set-Cookie"), Qt::CaseInsensitive) == 0)
            return header.value().toString().toUtf8();
    }
    return {};
}

NHelioCloudDocsNetwork::HeaderPairs pairsOf(const QVariantMap& headers)
{
    NHelioCloudDocsNetwork::HeaderPairs pairs;
    for (auto header = headers.begin(); header != headers.end(); ++header) {
        // The network library gives several headers of one name as the lines of one value.
        const QList<QByteArray> values = header.value().toString().toUtf8().split('\n');
        for (const QByteArray& value : values)
            pairs.append({header.key().toUtf8(), value});
    }
    return pairs;
}

} // namespace

void NHelioCloudDocsNetwork::onRequestFinished(INetworkReply* reply, quint64 startMs,
                                               const QString& replyName, const QString& frontVer)
{
    if (!reply)
        return;
    const qint64 endMs = nclock::nowMs();
    if (isFileReply(replyName))
        takeFileReply(*reply, replyName, qint64(startMs), endMs);
    Q_EMIT sigRequestFromHostWidgetFinished(replyName, m_officeType, reply->body(), qint64(startMs), endMs,
                                            frontVer);
    if (reply->request())
        _reportNetworkResult(reply->errorCode(), reply->request()->url().toString(), endMs - qint64(startMs),
                             reply->networkTimeMs(), replyName);
}

/** Keeps the reply for whoever asks for it: the browser's own request, the page, a script. */
void NHelioCloudDocsNetwork::takeFileReply(const INetworkReply& reply, const QString& replyName,
                                           qint64 startMs, qint64 endMs)
{
    constexpr int statusOk = 200;
    const QVariantMap headers = reply.headers();
    const QByteArray cookies = cookieLines(headers);
    if (!cookies.isEmpty())
        Q_EMIT sigAppendResponseCookies(QNetworkCookie::parseCookies(cookies));
    NDOPResponseData data;
    data.body = reply.body();
    data.headers = pairsOf(headers);
    data.status = reply.httpStatusCode();
    data.startTime = startMs;
    data.endTime = endMs;
    if (replyName == docsrequests::openFile)
        m_openFileResponseHeaders = data.headers;
    if (data.status != statusOk) {
        ndocslog::info(
            QStringLiteral("replyName: %1, request error HTTPStatusCode: %2").arg(replyName).arg(data.status),
            "NHelioCloudDocsNetwork::onRequestFinished");
    }
    if (const auto manager = NDOPResourceManager::instance())
        manager->setResponseData(replyName, m_fileId, m_officeType, m_connId, data);
}

void NHelioCloudDocsNetwork::onFinished(QNetworkReply* reply)
{
    if (!reply)
        return;
    const qint64 startTime = reply->property("startTime").toLongLong();
    const QString replyName = reply->property("replyName").toString();
    // A download's last bytes belong to the task that writes them; this is called before it has them.
    if (replyName == docsrequests::dataUpgrade)
        Q_EMIT sigRequestFromApiFinished(docsrequests::dataUpgrade, reply->readAll());
    _reportNetworkResult(reply->error(), nrt::requestedUrl(*reply).toString(), nclock::nowMs() - startTime,
                         -1, replyName);
    reply->deleteLater();
}

void NHelioCloudDocsNetwork::_reportNetworkResult(int errorCode, const QString& url, qint64 useTime,
                                                  qint64 networkUseTime, const QString& name) const
{
    constexpr auto operation = "NHelioCloudDocsNetwork::_reportNetworkResult";
    NCoreApplication* core = NCoreApplication::instance();
    NDcInfoC* collection = core ? core->getDcInfo() : nullptr;
    if (!collection) {
        ndocslog::info(QStringLiteral("can not report network result"), operation);
        return;
    }
    const int sampling = nsettingsvalues::reportSampling();
    if (sampling == 0) {
        ndocslog::info(QStringLiteral("pb is 0, ban network result"), operation);
        return;
    }
    const int pb = errorCode != 0 ? 1 : sampling;
    if (!collection->canSendByCurUser(pb, true))
        return;
    const NDcFields fields{
        {QStringLiteral("result"), errorCode == 0 ? QStringLiteral("1") : QStringLiteral("0")},
        {QStringLiteral("errorcode"), QString::number(errorCode)},
        {QStringLiteral("name"), name},
        {QStringLiteral("url"), url},
        {QStringLiteral("usetime"), QString::number(useTime)},
        {QStringLiteral("networkusetime"), QString::number(networkUseTime)},
        {QStringLiteral("pb"), QString::number(pb)},
        {QStringLiteral("reportver"), QStringLiteral("1.0")},
    };
    collection->postGeneralEvent(QStringLiteral("docs_localproxy_dop_network"), fields, 0, 0, 1, true);
}
