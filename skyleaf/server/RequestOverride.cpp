#include "server/RequestOverride.h"

#include <QUrl>
#include <QUrlQuery>

namespace requestoverride {
namespace {

void addQuery(const QJsonObject& items, QString& text)
{
    QUrl url(text);
    if (items.isEmpty() || !url.isValid())
        return;
    QUrlQuery query(url);
    for (auto item = items.begin(); item != items.end(); ++item)
        query.addQueryItem(item.key(), item.value().toString());
    url.setQuery(query);
    text = url.toString(QUrl::FullyEncoded);
}

void addCookies(const QJsonObject& cookies, QString& text)
{
    if (cookies.isEmpty())
        return;
    if (!text.endsWith(u';'))
        text += u';';
    for (auto cookie = cookies.begin(); cookie != cookies.end(); ++cookie)
        text += cookie.key() + u'=' + cookie.value().toString() + u';';
}

} // namespace

QString memberName(const QString& routeKey)
{
    return QString::fromLatin1(routeKey.toUtf8().toBase64());
}

void apply(const QJsonObject& changes, DocsRequest& request)
{
    addQuery(changes.value(QLatin1String("query")).toObject(), request.url);
    const QJsonObject headers = changes.value(QLatin1String("headers")).toObject();
    for (auto header = headers.begin(); header != headers.end(); ++header)
        request.headers.insert(header.key(), header.value().toString().toUtf8());
    const QJsonObject body = changes.value(QLatin1String("body")).toObject();
    for (auto member = body.begin(); member != body.end(); ++member)
        request.body.insert(member.key(), member.value());
    addCookies(changes.value(QLatin1String("cookie")).toObject(), request.cookies);
}

void writeCookies(DocsRequest& request)
{
    request.headers.insert(QStringLiteral("Cookie"), request.cookies.toUtf8());
    request.headers.insert(QStringLiteral("X-Cookie"), request.cookies.toUtf8());
}

} // namespace requestoverride
