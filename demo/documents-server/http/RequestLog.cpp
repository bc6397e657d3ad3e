#include "http/RequestLog.h"

#include <QJsonDocument>

namespace documents {
namespace {

constexpr std::size_t keptRequests = 1000;
constexpr int keptBodyBytes = 4096;

QJsonObject toJson(const std::vector<std::pair<QByteArray, QByteArray>>& headers)
{
    QJsonObject object;
    for (const auto& [name, value] : headers)
        object.insert(QString::fromUtf8(name.toLower()), QString::fromUtf8(value));
    return object;
}

} // namespace

QJsonObject toJson(const LoggedRequest& request)
{
    const QJsonObject headers = toJson(request.headers);
    const auto header = [&headers](const char* name) {
        return headers.value(QLatin1String(name)).toString();
    };
    return {{QStringLiteral("t"), request.time},
            {QStringLiteral("method"), QString::fromUtf8(request.method)},
            {QStringLiteral("target"), QString::fromUtf8(request.target)},
            {QStringLiteral("status"), request.status},
            {QStringLiteral("bytes"), request.bytes},
            {QStringLiteral("userAgent"), header("user-agent")},
            {QStringLiteral("cookie"), header("cookie")},
            {QStringLiteral("origin"), header("origin")},
            {QStringLiteral("body"), QString::fromUtf8(request.body)},
            {QStringLiteral("headers"), headers}};
}

QByteArray loggedBody(const QByteArray& method, const QByteArray& body)
{
    return method == "POST" ? body.left(keptBodyBytes) : QByteArray();
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
    ++m_lastNumber;
    m_recent.push_back(request);
    if (m_recent.size() > keptRequests)
        m_recent.pop_front();
}

QJsonArray RequestLog::recent(qint64 since) const
{
    QJsonArray entries;
    qint64 number = m_lastNumber - static_cast<qint64>(m_recent.size());
    for (const LoggedRequest& request : m_recent) {
        if (++number <= since)
            continue;
        QJsonObject entry = toJson(request);
        entry.insert(QStringLiteral("seq"), number);
        entries.append(entry);
    }
    return entries;
}

} // namespace documents
