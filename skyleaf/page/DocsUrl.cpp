#include "page/DocsUrl.h"

#include "offline/ResourceRequests.h"

#include <QStringList>
#include <QUrlQuery>
#include <QUuid>

#include <utility>

namespace docsurl {
namespace {

const QStringList& openTimeItems()
{
    static const QStringList items{
        QStringLiteral("startTime"),
        QStringLiteral("traceId"),
        QStringLiteral("from"),
        QStringLiteral("feature"),
        QStringLiteral("entryType"),
        QStringLiteral("interruptUseTime"),
        QStringLiteral("prepareUrlTime"),
        QStringLiteral("referer"),
        QStringLiteral("versionMismatchAddedBy"),
    };
    return items;
}

QString textOf(const QUrl& url)
{
    return url.toString(QUrl::FullyEncoded);
}

QString findOfficeType(const QUrl& url, const NormalizeContext& context)
{
    const QString named = queryValue(url, QStringLiteral("officeType"));
    if (!named.isEmpty())
        return named;

    QString suffix = context.fileNameSuffix;
    if (suffix.isEmpty())
        suffix = context.suffix;
    if (suffix.isEmpty())
        suffix = queryValue(url, QStringLiteral("suffix"));
    const QString mapped = suffix.isEmpty() ? QString() : context.officeTypeOfSuffix(suffix);
    return mapped.isEmpty() ? context.recordedOfficeType(fileIdOf(url)) : mapped;
}

} // namespace

bool isDocumentUrl(const QUrl& url)
{
    return url.isValid() && nresourcerequests::isDocumentPath(url.path());
}

QString fileIdOf(const QUrl& url)
{
    return isDocumentUrl(url) ? lastSegmentOf(url) : QString();
}

QString lastSegmentOf(const QUrl& url)
{
    const QString path = url.path();
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

QString queryValue(const QUrl& url, const QString& name)
{
    return QUrlQuery(url).queryItemValue(name, QUrl::FullyDecoded);
}

void replaceQueryItem(QUrl& url, const QString& name, const QString& value)
{
    QUrlQuery query(url);
    const auto items = query.queryItems(QUrl::FullyEncoded);
    const QString encoded = QString::fromLatin1(QUrl::toPercentEncoding(value));
    query.clear();
    bool placed = false;
    for (const auto& item : items) {
        if (item.first != name)
            query.addQueryItem(item.first, item.second);
        else if (!std::exchange(placed, true))
            query.addQueryItem(name, encoded);
    }
    if (!placed)
        query.addQueryItem(name, encoded);
    url.setQuery(query);
}

void removeQueryItems(QUrl& url, const QStringList& names)
{
    QUrlQuery query(url);
    for (const QString& name : names)
        query.removeAllQueryItems(name);
    url.setQuery(query);
    if (query.isEmpty())
        url.setQuery(QString());
}

QString withQueryItem(const QString& text, const QString& name, const QString& value)
{
    QUrl url(text);
    if (!url.isValid())
        return text;
    replaceQueryItem(url, name, value);
    return textOf(url);
}

QString newIdentifier()
{
    return QUuid::createUuid().toString(QUuid::Id128);
}

QString commandUrl(const QString& command, const CommandContext& context)
{
    const QString path = command.startsWith(QLatin1Char('/')) ? command.mid(1) : command;
    const QString joint = command.contains(QLatin1Char('?')) ? QStringLiteral("&") : QStringLiteral("?");
    // The command may hold "%1": all places are filled at once.
    return context.serviceOrigin + QStringLiteral("/%1%2v=%3&type=%4&channel=%5&t=%6")
                                       .arg(path, joint, context.version, context.application,
                                            context.channel, QString::number(context.nowMs));
}

Normalized normalize(const QString& text, const NormalizeContext& context)
{
    QUrl url(text);
    Normalized result;
    result.officeType = context.officeType;
    result.traceId = context.traceId;
    const bool isDocument = isDocumentUrl(url);

    if (result.officeType.isEmpty() && isDocument)
        result.officeType = findOfficeType(url, context);
    if (url.isValid() && !result.officeType.isEmpty()) {
        replaceQueryItem(url, QStringLiteral("officeType"), result.officeType);
        replaceQueryItem(url, QStringLiteral("openEnv"), QStringLiteral("hybrid"));
    }

    result.clientProxy = context.isClientProxy(result.officeType);
    if (result.traceId.isEmpty() && !result.officeType.isEmpty() && isDocument) {
        result.traceId = queryValue(url, QStringLiteral("traceId"));
        if (result.traceId.isEmpty())
            result.traceId = context.makeTraceId();
    }
    if (url.isValid() && !result.traceId.isEmpty()) {
        replaceQueryItem(url, QStringLiteral("client_proxy"),
                         result.clientProxy ? QStringLiteral("true") : QStringLiteral("false"));
        if (!QUrlQuery(url).hasQueryItem(QStringLiteral("traceId")))
            replaceQueryItem(url, QStringLiteral("traceId"), result.traceId);
    }
    if (url.isValid() && context.darkSkin)
        replaceQueryItem(url, QStringLiteral("theme"), QStringLiteral("dark"));

    result.url = url.isValid() ? textOf(url) : text;
    return result;
}

QString withoutOpenTimeItems(const QString& text)
{
    QUrl url(text);
    if (!url.isValid())
        return text;
    removeQueryItems(url, openTimeItems());
    return textOf(url);
}

QString reloadUrl(const QString& text, const QString& reason, qint64 nowMs)
{
    QUrl url(withoutOpenTimeItems(text));
    if (!url.isValid())
        return {};
    replaceQueryItem(url, QStringLiteral("startTime"), QString::number(nowMs));
    replaceQueryItem(url, QStringLiteral("from"), reason);
    return textOf(url);
}

QString withoutLocalPackageItems(const QString& text)
{
    QUrl url(text);
    if (!url.isValid())
        return text;
    removeQueryItems(url,
                     {QStringLiteral("officeType"), QStringLiteral("openEnv"), QStringLiteral("localId")});
    replaceQueryItem(url, QStringLiteral("referer"), QStringLiteral("version_mismatch"));
    replaceQueryItem(url, QStringLiteral("versionMismatchAddedBy"), QStringLiteral("client"));
    return textOf(url);
}

QString enterSourceOf(const QString& url)
{
    const QString marker = QStringLiteral("pcEnter=");
    const int start = url.lastIndexOf(marker);
    if (start < 0)
        return {};
    return url.mid(start + marker.size()).section(QLatin1Char('&'), 0, 0);
}

} // namespace docsurl
