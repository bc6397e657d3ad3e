#include "proxy/NDOPConfig.h"

#include "proxy/NOfficeTypes.h"

#include <QUrlQuery>

namespace NDocsOfflinePage {

NDOPConfig& NDOPConfig::instance()
{
    static NDOPConfig config;
    return config;
}

bool NDOPConfig::isDopEnabled(const QString& officeType) const
{
    // Local packages are not served yet: every type is off.
    Q_UNUSED(officeType)
    return false;
}

bool NDOPConfig::isOfflineEditEnabled(const QString& officeType) const
{
    Q_UNUSED(officeType)
    return false;
}

QString NDOPConfig::packageName(const QString& officeType) const
{
    return nofficetypes::packageName(officeType);
}

QString NDOPConfig::pluginName(const QString& officeType) const
{
    return nofficetypes::pluginName(officeType);
}

bool NDOPConfig::isPreopenSupported(const QString& officeType) const
{
    return nofficetypes::isPreopenSupported(officeType);
}

bool NDOPConfig::isSsrSupported(const QString& officeType) const
{
    return nofficetypes::isSsrSupported(officeType);
}

bool NDOPConfig::isHybridUrl(const QUrl& url) const
{
    if (url.isEmpty() || !url.isValid() || !url.hasQuery())
        return false;
    const QUrlQuery query(url);
    const QString officeType = query.queryItemValue(QStringLiteral("officeType")).toLower();
    const QString openEnv = query.queryItemValue(QStringLiteral("openEnv")).toLower();
    return nofficetypes::codes().contains(officeType) && openEnv == QLatin1String("hybrid");
}

bool NDOPConfig::forceProxy() const
{
    return false;
}

QString NDOPConfig::officeTypeOfUrl(const QString& url) const
{
    const QUrl parsed(url);
    if (url.isEmpty() || !parsed.isValid() || !parsed.hasQuery())
        return {};
    return QUrlQuery(parsed).queryItemValue(QStringLiteral("officeType"));
}

QString NDOPConfig::officeTypeCode(const QString& fileType) const
{
    return nofficetypes::codeOfFileType(fileType);
}

bool isDopMasterSwitchOn()
{
    return false;
}

} // namespace NDocsOfflinePage
