#pragma once

#include <QJsonObject>

/** The values of the configuration centre that the add-on reads, with their defaults. */
namespace nconfigvalues {

/** The JSON object of an item of the add-on's group; empty when the centre or the item is missing. */
QJsonObject item(int number);

// Read once per process.
/** How long a page that was created in advance waits for its use, in milliseconds. */
int unusedPageLifetimeMs();
/** How long the server's answers of an open stay good, in milliseconds. */
qint64 responseDataLifetimeMs();
bool isDelayedLoadOn();
/** How long the first request of a page is held back, in milliseconds. */
int delayIntervalMs();
bool isVersionCheckOn();
/** How long a page waits for the version check, in milliseconds. */
int versionCheckTimeoutMs();
/** The time of the version-check cache's entries, in days. */
int versionCheckCacheDays();
bool isProxyResetOn();
/** Whether the files of local packages are read into memory; false until the centre knows the add-on's group.
 */
bool isPreloadingOn();
/** How often online documents are opened counts as often, and for how long counts are kept. */
struct OpenFrequency
{
    int daysThreshold = 7;
    int highFrequencyThreshold = 10;
    int mediumFrequencyThreshold = 5;
    int recordExpiredDays = 30;
};
OpenFrequency openFrequency();
/** Whether a document that opens several ways is opened with the help of the sync module. */
bool isSyncAssistOn();
/** Whether collaborations may be closed in parallel. */
bool isParallelCloseOn();

// Read on every call.
/** Whether links of the chat application's schemes are handed on. */
bool areSupportedProtocolsOn();

} // namespace nconfigvalues
