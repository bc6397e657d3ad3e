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

/**
 * The transfers of storage packages that the document's script asks for, whose results reach the bridge. They
 * end with the document or the bridge; null without a bridge.
 */
NCloudDocsRequestTask* NHelioCloudDocsPage::transfers()
{
    if (!m_jsObj)
        return nullptr;
    if (m_transfers && m_transfers->parent() == m_jsObj)
        return m_transfers;
    m_transfers = new NCloudDocsRequestTask(m_jsObj);
    const auto report = [bridge = m_jsObj, document = m_jsObj->document()](const QString& replyName,
                                                                           const QByteArray& body) {
        if (bridge->isAnswerable(document, replyName))
            bridge->onNetworkRequestFinish(replyName, body);
    };
    connect(m_transfers, &NCloudDocsRequestTask::sigRequestFromApiFinished, m_jsObj, report,
            Qt::QueuedConnection);
    connect(m_jsObj, &NHelioCloudDocsAsynJsObj::documentEnded, m_transfers,
            [task = m_transfers.data()] { delete task; });
    return m_transfers;
}

void NHelioCloudDocsPage::uploadPackage(const QString& url, const QString& packageInfo,
                                        const QString& zipPath)
{
    if (NCloudDocsRequestTask* task = transfers())
        task->startDataUpgrade(url, packageInfo, zipPath);
}

void NHelioCloudDocsPage::downloadPackage(const QString& url, const QString& savePath)
{
    if (NCloudDocsRequestTask* task = transfers())
        task->startDownloadFileFromURL(url, savePath);
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
