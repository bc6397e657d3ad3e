#include "http/RequestLog.h"

#include <QJsonDocument>

namespace documents {
namespace {

constexpr std::size_t keptRequests = 1000;

} // namespace

QJsonObject toJson(const LoggedRequest& request)
{
    return {{QStringLiteral("t"), request.time},
            {QStringLiteral("method"), QString::fromUtf8(request.method)},
            {QStringLiteral("target"), QString::fromUtf8(request.target)},
            {QStringLiteral("status"), request.status},
            {QStringLiteral("bytes"), request.bytes},
            {QStringLiteral("userAgent"), QString::fromUtf8(request.userAgent)},
            {QStringLiteral("cookie"), QString::fromUtf8(request.cookie)}};
}

bool RequestLog::appendTo(const QString& path, QString* errorText)
{
    m_file.setFileName(path);
    if (m_file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        return true;
    *errorText = m_file.errorString();
    return false;
}

void RequestLog::record(const LoggedRequest& request)
{
    if (m_file.isOpen())
        m_file.write(QJsonDocument(toJson(request)).toJson(QJsonDocument::Compact) + '\n');
    if (request.target.startsWith("/_control"))
        return;
    m_recent.push_back(request);
    if (m_recent.size() > keptRequests)
        m_recent.pop_front();
}

QJsonArray RequestLog::recent() const
{
    QJsonArray entries;
    for (const LoggedRequest& request : m_recent)
        entries.append(toJson(request));
    return entries;
}

} // namespace documents
