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

QString mainDomain()
{
    NCoreApplication* core = NCoreApplication::instance();
    const NDomainMgr* domains = core ? core->getDomainMgr() : nullptr;
    return domains ? domains->mainDomain() : QString();
}

} // namespace ndomains
