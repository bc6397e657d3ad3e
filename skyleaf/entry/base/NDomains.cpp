#include "base/NDomains.h"

#include "zeolite/NCoreApplication.h"
#include "zeolite/NDomainMgr.h"

#include <QUrl>

namespace ndomains {

QString url(const QString& key)
{
    NCoreApplication* core = NCoreApplication::instance();
    const NDomainMgr* domains = core ? core->getDomainMgr() : nullptr;
    return domains ? domains->getDomainUrl(key) : QString();
}

QString origin(const QString& key)
{
    return QUrl(url(key)).toString(QUrl::RemovePort | QUrl::StripTrailingSlash);
}

QString host(const QString& key)
{
    return QUrl(url(key)).host();
}

bool isServiceHost(const QString& host)
{
    return !host.isEmpty() &&
           (host.compare(ndomains::host(QStringLiteral("drive")), Qt::CaseInsensitive) == 0 ||
            host.compare(ndomains::host(QStringLiteral("quill")), Qt::CaseInsensitive) == 0);
}

QString mainDomain()
{
    NCoreApplication* core = NCoreApplication::instance();
    const NDomainMgr* domains = core ? core->getDomainMgr() : nullptr;
    return domains ? domains->mainDomain() : QString();
}

} // namespace ndomains
