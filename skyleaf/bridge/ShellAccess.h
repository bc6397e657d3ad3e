#pragma once

#include "nheliostat/NHelioCloudSvrProxy.h"

class NHelioApplication;
class NHelioCentralArea;
class NHelioMainWindow;
class NHelioPage;
class NHelioTab;

/** The shell as the script methods reach it; null, or a signed-out user, where a part of it is missing. */
namespace shellaccess {

NHelioCloudSvrProxy* cloudService();
/** The signed-in user. */
NHelioUserInfo user();
/** The main window that holds the object. */
NHelioMainWindow* windowOf(const QObject* object);
NHelioCentralArea* centralAreaOf(const QObject* object);
/** The tab of the page's initial sub page in a window. */
NHelioTab* tabOf(const NHelioPage* page, const NHelioMainWindow* window);
/** Tells the collector of opens that the user opens something; `virtualType` as in NHelioCollectInfoHelper.
 */
void reportOpenStart(const QString& source, int virtualType);

} // namespace shellaccess
