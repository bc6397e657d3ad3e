#include "zeolite/services/DomainTable.h"

DomainTable::DomainTable(QMap<QString, QString> urls, QString mainDomain, QString documentsServiceHost,
                         bool intranet)
    : m_urls(std::move(urls))
    , m_mainDomain(std::move(mainDomain))
    , m_documentsServiceHost(std::move(documentsServiceHost))
    , m_intranet(intranet)
{
    for (QString& url : m_urls) {
        while (url.endsWith(QLatin1Char('/')))
            url.chop(1);
    }
}

QString DomainTable::getDomainUrl(const QString& key) const
{
    return m_urls.value(key);
}

bool DomainTable::isIntranet() const
{
    return m_intranet;
}

QString DomainTable::mainDomain() const
{
    return m_mainDomain;
}

QString DomainTable::documentsServiceHost() const
{
    return m_documentsServiceHost;
}
