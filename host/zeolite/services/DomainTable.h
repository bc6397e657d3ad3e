#pragma once

#include "zeolite/NDomainMgr.h"

#include <QMap>

/** The domains of a deployment as the shell was told them. Any thread. */
class DomainTable final : public NDomainMgr
{
public:
    DomainTable(QMap<QString, QString> urls, QString mainDomain, QString documentsServiceHost, bool intranet);

    QString getDomainUrl(const QString& key) const override;
    bool isIntranet() const override;
    QString mainDomain() const override;
    QString documentsServiceHost() const override;

private:
    QMap<QString, QString> m_urls;
    const QString m_mainDomain;
    const QString m_documentsServiceHost;
    const bool m_intranet;
};
