#include "server/NHelioCloudDocsNetwork.h"

#include "base/NClock.h"
#include "base/NDocsLog.h"
#include "nheliostat/NHelioApplication.h"
#include "nrt/networkAccess.h"
#include "offline/NDownloadFileTask.h"
#include "offline/NReadTask.h"
#include "server/DocsRequests.h"
#include "server/RequestIdentity.h"
#include "zeolite/NCoreApplication.h"

#include <QFileInfo>
#include <QHttpMultiPart>
#include <QNetworkReply>
#include <QThreadPool>

namespace {

QHttpPart part(const QByteArray& disposition, const QByteArray& body)
{
    QHttpPart made;
    made.setRawHeader("Content-Disposition", disposition);
    made.setBody(body);
    return made;
}

/** A text for use between the quotation marks of a header. */
QByteArray quoted(const QString& text)
{
    return text.toUtf8().replace('\\', "\\\\").replace('"', "\\\"").replace('\r', ' ').replace('\n', ' ');
}

} // namespace

void NHelioCloudDocsNetwork::startDataUpgrade(const QString& url, const QString& packageInfo,
                                              const QString& filePath)
{
    if (!m_upgradeAccessManager) {
        m_upgradeAccessManager = new nrt::NNetworkAccessManager(this);
        connect(m_upgradeAccessManager, &QNetworkAccessManager::finished, this,
                &NHelioCloudDocsNetwork::onFinished);
    }
    auto* task = new NReadTask(filePath);
    connect(task, &NReadTask::finished, this,
            [this, url, packageInfo, filePath](bool ok, const QByteArray& content) {
                if (!ok || !postDataUpgrade(url, packageInfo, filePath, content))
                    Q_EMIT sigRequestFromApiFinished(docsrequests::dataUpgrade, {});
            });
    QThreadPool::globalInstance()->start(task);
    ndocslog::info(QStringLiteral("startDataUpgrade url:%1").arg(url),
                   "NHelioCloudDocsNetwork::startDataUpgrade");
}

bool NHelioCloudDocsNetwork::postDataUpgrade(const QString& url, const QString& packageInfo,
                                             const QString& filePath, const QByteArray& content)
{
    const NHelioApplication* application = NHelioApplication::instance();
    NCoreApplication* core = NCoreApplication::instance();
    if (!application || !application->cloudSvrProxy() || !core || !core->getDomainMgr())
        return false;
    auto* form = new QHttpMultiPart(QHttpMultiPart::FormDataType);
    form->append(part("form-data; name=\"file\"; filename=\"" + quoted(QFileInfo(filePath).fileName()) + '"',
                      content));
    form->append(part("form-data; name=\"package_info\"", packageInfo.toUtf8()));

    QNetworkRequest request((QUrl(url)));
    const QByteArray cookies = (requestidentity::userCookies() + requestidentity::branchCookie()).toUtf8();
    request.setRawHeader("Origin", requestidentity::originHost().toUtf8());
    request.setRawHeader("Cookie", cookies);
    request.setRawHeader("X-Cookie", cookies);
    request.setRawHeader("User-Agent", NxUserAgentUtil::getUserAgent().toUtf8());
    QNetworkReply* reply = m_upgradeAccessManager->post(request, form);
    form->setParent(reply);
    reply->setProperty("startTime", nclock::nowMs());
    reply->setProperty("replyName", docsrequests::dataUpgrade);
    return true;
}

void NHelioCloudDocsNetwork::startDownloadFileFromURL(const QString& url, const QString& savePath)
{
    if (!m_downloadAccessManager) {
        m_downloadAccessManager = new nrt::NNetworkAccessManager(this);
        connect(m_downloadAccessManager, &QNetworkAccessManager::finished, this,
                &NHelioCloudDocsNetwork::onFinished);
    }
    auto* task = new NDownloadFileTask(savePath, QUrl(url), m_downloadAccessManager);
    connect(task, &NDownloadFileTask::requestFinished, this, [this](bool ok) {
        Q_EMIT sigRequestFromApiFinished(docsrequests::downloadFile,
                                         ok ? QByteArrayLiteral("1") : QByteArrayLiteral("0"));
    });
    QThreadPool::globalInstance()->start(task);
    ndocslog::info(QStringLiteral("startDownloadFileFromURL url:%1").arg(url),
                   "NHelioCloudDocsNetwork::startDownloadFileFromURL");
}
