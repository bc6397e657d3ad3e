#include "shell/story/StoryUrl.h"

#include <QUrl>
#include <QUrlQuery>

namespace shell::story {

namespace {

bool endsWithAny(const QString& text, std::initializer_list<QLatin1String> ends)
{
    for (const QLatin1String& end : ends) {
        if (text.endsWith(end, Qt::CaseInsensitive))
            return true;
    }
    return false;
}

} // namespace

RequestKind requestKind(const QString& text)
{
    const QString path = QUrl(text).path();
    if (path.startsWith(QLatin1String("/p/")) || path.startsWith(QLatin1String("/l/")) ||
        path.startsWith(QLatin1String("/office/new/")))
        return RequestKind::Page;
    if (path.contains(QLatin1String("/preopen/")))
        return RequestKind::OpenFile;
    if (path.startsWith(QLatin1String("/office-config/"))) {
        const QStringList parts = queryOf(text, QStringLiteral("part")).split(QLatin1Char(','));
        return parts.contains(QLatin1String("ssr")) ? RequestKind::SsrContent : RequestKind::EnvConfig;
    }
    if (endsWithAny(path, {QLatin1String(".js"), QLatin1String(".mjs"), QLatin1String(".css")}))
        return RequestKind::Script;
    if (endsWithAny(path, {QLatin1String(".svg"), QLatin1String(".png"), QLatin1String(".ico"),
                           QLatin1String(".jpg"), QLatin1String(".webp"), QLatin1String(".gif")}))
        return RequestKind::Picture;
    return RequestKind::Other;
}

QString replyNameOf(RequestKind kind)
{
    switch (kind) {
    case RequestKind::OpenFile:
        return QStringLiteral("open_file");
    case RequestKind::EnvConfig:
        return QStringLiteral("get_env_config");
    case RequestKind::SsrContent:
        return QStringLiteral("get_ssr_content");
    default:
        return {};
    }
}

bool asksForFetchedReply(const QString& url)
{
    return queryOf(url, QStringLiteral("proxy")).compare(QLatin1String("true"), Qt::CaseInsensitive) == 0;
}

QString queryOf(const QString& url, const QString& item)
{
    return QUrlQuery(QUrl(url)).queryItemValue(item, QUrl::FullyDecoded);
}

QString placeOf(const QString& url)
{
    return QUrl(url).toString(QUrl::RemoveQuery | QUrl::RemoveFragment | QUrl::RemoveUserInfo);
}

QString fileNameOf(const QString& url)
{
    return QUrl(url).path().section(QLatin1Char('/'), -1);
}

} // namespace shell::story
