#include "bridge/DocsLinks.h"

#include "base/NDomains.h"

#include <QUrl>

namespace docslinks {

QString documentUrlBase()
{
    return ndomains::url(QStringLiteral("quill_api_spec"));
}

QString documentUrl(const QString& fileId)
{
    return documentUrlBase() + QStringLiteral("/p/%1").arg(fileId);
}

QString fileIdFromDocsUrl(const QString& url)
{
    if (url.isEmpty())
        return {};
    QString place = QUrl(url).toString(QUrl::RemoveScheme | QUrl::RemoveQuery | QUrl::StripTrailingSlash);
    if (place.startsWith(QLatin1String("//")))
        place.remove(QStringLiteral("//"));
    const QString site = QUrl(documentUrlBase()).host() + QStringLiteral("/p/");
    if (!place.startsWith(site, Qt::CaseInsensitive))
        return {};
    const QString id = place.mid(site.size());
    bool isNumber = false;
    return id.toLongLong(&isNumber) > 0 && isNumber ? id : QString();
}

} // namespace docslinks
