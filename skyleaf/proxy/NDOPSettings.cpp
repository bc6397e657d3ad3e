#include "proxy/NDOPSettings.h"

#include "base/NReadOnce.h"
#include "nrt/product.h"

namespace NDocsOfflinePage {

NDOPSettings::NDOPSettings()
{
    beginGroup(QStringLiteral("usercenter"));
    beginGroup(QStringLiteral("docsOfflinePage"));
}

} // namespace NDocsOfflinePage

NClouddocsCCSettings::NClouddocsCCSettings()
{
    beginGroup(QStringLiteral("clouddocs"));
}

namespace nsettingsvalues {

using NDocsOfflinePage::NDOPSettings;

QString webofficeBranch()
{
    static NReadOnce<QString> branch(
        [] { return NDOPSettings().value(QStringLiteral("weboffice_branch")).toString(); });
    return branch();
}

int reportSampling()
{
    static NReadOnce<int> sampling([] {
        bool isNumber = false;
        const int value = NDOPSettings().value(QStringLiteral("reportPb"), 1).toInt(&isNumber);
        return isNumber && (value == 0 || value == 1 || value == 1000) ? value : 100;
    });
    return sampling();
}

bool isLocalResourceCheckDisabled()
{
    static NReadOnce<bool> disabled(
        [] { return NDOPSettings().value(QStringLiteral("disableCheckLocalResInvalid"), false).toBool(); });
    return disabled();
}

bool isAccountSdkUsed()
{
    static NReadOnce<bool> used(
        [] { return nrt::NCCCommonSettings().value(QStringLiteral("usingZeosidEnabled"), true).toBool(); });
    return used();
}

bool isUserAgentModified()
{
    static NReadOnce<bool> modified([] {
        return nrt::product::getFuncSwitchState(QStringLiteral("isDocsSupportModifyUserAgent"), true);
    });
    return modified();
}

} // namespace nsettingsvalues
