#include "page/NHelioCloudDocsPage.h"

#include "bridge/NHelioCloudDocsAsynJsObj.h"

// What the page's script asks of the page, through the bridge.

void NHelioCloudDocsPage::onOfficeTypeChanged(const QString& officeType)
{
    if (m_jsObj)
        m_jsObj->setOfficeType(officeType);
}

void NHelioCloudDocsPage::onReplyCame(const QString& name, const QByteArray& body, qint64 startMs,
                                      qint64 endMs)
{
    if (m_jsObj)
        m_jsObj->forwardPreloadRequest(name, body, startMs, endMs);
}

/** The transfers of storage packages, whose results reach the bridge. */
NCloudDocsRequestTask& NHelioCloudDocsPage::transfers()
{
    if (!m_transfers)
        m_transfers = std::make_unique<NCloudDocsRequestTask>(nullptr);
    if (m_jsObj)
        connect(m_transfers.get(), &NCloudDocsRequestTask::sigRequestFromApiFinished, m_jsObj,
                &NHelioCloudDocsAsynJsObj::onNetworkRequestFinish,
                static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::UniqueConnection));
    return *m_transfers;
}

void NHelioCloudDocsPage::uploadPackage(const QString& url, const QString& packageInfo,
                                        const QString& zipPath)
{
    transfers().startDataUpgrade(url, packageInfo, zipPath);
}

void NHelioCloudDocsPage::downloadPackage(const QString& url, const QString& savePath)
{
    transfers().startDownloadFileFromURL(url, savePath);
}

std::optional<NPreloadedReply> NHelioCloudDocsPage::preloadedReply(const QString& key) const
{
    const auto reply = m_load->reply(key);
    if (!reply)
        return std::nullopt;
    return NPreloadedReply{reply->body, reply->startTime, reply->endTime};
}

QJsonObject NHelioCloudDocsPage::openFileRequestBody() const
{
    const NCloudDocsRequestTask* task = m_load->requestTask();
    return task ? task->getOpenFileRequestBody() : QJsonObject();
}

QList<QPair<QByteArray, QByteArray>> NHelioCloudDocsPage::openFileResponseHeaders() const
{
    const NCloudDocsRequestTask* task = m_load->requestTask();
    return task ? task->getOpenFileResponseHeaders() : QList<QPair<QByteArray, QByteArray>>();
}
