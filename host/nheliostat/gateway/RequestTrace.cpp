#include "gateway/RequestTrace.h"

#include "gateway/RequestHead.h"

namespace gateway {
namespace {

QByteArray bytesOf(std::string_view text)
{
    return {text.data(), static_cast<int>(text.size())};
}

} // namespace

RequestTrace::RequestTrace(const Observer& observer)
    : m_observer(observer)
{
}

void RequestTrace::begin(const RequestHead& head, std::string_view viewId)
{
    if (!m_observer)
        return;
    m_start = std::chrono::steady_clock::now();
    m_viewId = bytesOf(viewId);
    m_method = bytesOf(head.method);
    m_url = bytesOf(head.target);
    m_open = true;
}

void RequestTrace::setUrl(std::string_view url)
{
    if (m_open)
        m_url = bytesOf(url);
}

void RequestTrace::finish(GatewayRequestRecord::AnsweredBy by, int status, qint64 bytes)
{
    if (!m_open)
        return;
    m_open = false;
    GatewayRequestRecord record;
    record.viewId = m_viewId;
    record.method = m_method;
    record.url = QUrl::fromEncoded(m_url);
    record.by = by;
    record.status = status;
    record.bytes = bytes;
    record.ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - m_start).count();
    try {
        m_observer(record);
    } catch (...) {
        // An observer watches; what goes wrong in it is none of the browser's business.
    }
}

} // namespace gateway
