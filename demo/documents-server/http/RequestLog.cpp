#include "http/RequestLog.h"

#include <QJsonDocument>

#include "http/CookieField.h"

namespace documents {
namespace {

constexpr std::size_t keptRequests = 1000;
constexpr int keptBodyBytes = 4096;

bool isIdentity(const QByteArray& cookieName)
{
    return cookieName == "vlt_sid" || cookieName == "vltua" || cookieName == "weboffice_branch";
}

/** A "Cookie" field without the values that say who the user is. */
QByteArray masked(const QByteArray& field)
{
    QByteArrayList cookies;
    for (const auto& [name, value] : cookiesOf(field))
        cookies.append(name + '=' + (isIdentity(name) ? QByteArray("*") : value));
    return cookies.join("; ");
}

/** The names of the cookies that say who the user is. */
QJsonArray identityNames(const QByteArray& field)
{
    QJsonArray names;
    for (const auto& cookie : cookiesOf(field)) {
        const QString name = QString::fromUtf8(cookie.first);
        if (isIdentity(cookie.first) && !cookie.second.isEmpty() && !names.contains(name))
            names.append(name);
    }
    return names;
}

QByteArray fieldOf(const LoggedRequest& request, const char* name)
{
    for (const auto& header : request.headers) {
        if (header.first.toLower() == name)
            return header.second;
    }
    return {};
}

QJsonObject toJson(const std::vector<std::pair<QByteArray, QByteArray>>& headers)
{
    QJsonObject object;
    for (const auto& header : headers) {
        const QByteArray name = header.first.toLower();
        const bool isCookie = name == "cookie" || name == "x-cookie";
        object.insert(QString::fromUtf8(name),
                      QString::fromUtf8(isCookie ? masked(header.second) : header.second));
    }
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
            {QStringLiteral("cookies"), identityNames(fieldOf(request, "cookie"))},
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
