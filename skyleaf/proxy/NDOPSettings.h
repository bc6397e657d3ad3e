#pragma once

#include "nrt/NSettings.h"

#include <QString>

namespace NDocsOfflinePage {

/** The user's settings of the docs offline page: the group "usercenter", "docsOfflinePage" of the cloud
 * modules' store. */
class NDOPSettings : public nrt::NVLTCloudSettings
{
public:
    NDOPSettings();
};

} // namespace NDocsOfflinePage

/** The configuration of the documents module: the group "clouddocs" of the plug-ins' store. */
class NClouddocsCCSettings : public nrt::NCCPluginsSettings
{
public:
    NClouddocsCCSettings();
};

/** Settings that are read once per process. */
namespace nsettingsvalues {

/** The branch of the web application that the cookies ask for; empty for the default one. */
QString webofficeBranch();
/** How many users share one report of a successful request: 0 (no reports), 1, 100 or 1000. */
int reportSampling();
/** Whether a package that must be upgraded is used all the same. */
bool isLocalResourceCheckDisabled();
/** Whether requests are authenticated by the account SDK. */
bool isAccountSdkUsed();
/** Whether the pages' requests go out with the user agent of the suite's script core. */
bool isUserAgentModified();

} // namespace nsettingsvalues
