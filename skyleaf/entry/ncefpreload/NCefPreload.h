#pragma once

#include "nrt/kcc.h"

#include <QString>

class NHelioBrowserCreator;
class NxWebViewContainer;
class QWidget;
struct NHelioBrowserCreateInfo;

/**
 * The library "ncefpreload" keeps web view containers that were made in advance, by a name that their users
 * agree on, some with a front end of the documents site already loaded. Its exports, all for the
 * user-interface thread:
 *
 * "CreatePreloadContainer": wants one kept under the name. True when one is kept or will be made as soon as
 * the process has nothing better to do; false when none may be kept now.
 *
 * "CreateHelioBrowserByPreloadContainer": hands a browser widget around a kept container to the creator, at a
 * later turn of the event loop; `page` owns the widget. False when there is none, and then nothing comes.
 *
 * "RecordBrowserFeatureUsed": what the name stands for was used once more.
 *
 * "RecoveryContainer": takes a container back, with its ownership, and wipes it. False: it stays the
 * caller's.
 *
 * A container that comes from here carries the dynamic properties below. Its browser widget loads no startup
 * URL until that is enabled.
 */
namespace ncefpreload {

constexpr const char* createContainerName = "CreatePreloadContainer";
constexpr const char* createBrowserName = "CreateHelioBrowserByPreloadContainer";
constexpr const char* recordFeatureUsedName = "RecordBrowserFeatureUsed";
constexpr const char* recoverContainerName = "RecoveryContainer";

using CreateContainer = bool (*)(const QString& name);
using CreateBrowser = bool (*)(const QString& name, QWidget* page, NHelioBrowserCreator* creator,
                               const NHelioBrowserCreateInfo& info);
using RecordFeatureUsed = void (*)(const QString& name);
using RecoverContainer = bool (*)(const QString& name, NxWebViewContainer* container);

/** bool: a front end is loaded. */
constexpr const char* docFrameworkProperty = "preloadDocFramework";
/** The URL of the documents site that it was loaded from. */
constexpr const char* domainProperty = "preloadDomain";
constexpr const char* officeTypeProperty = "preloadOfficeType";
/** Its version; empty when it is what any document of the kind opens with. */
constexpr const char* frontVerProperty = "preloadFrontVer";
/** What may be injected into it: a JSON array of names, or nothing when it does not say. */
constexpr const char* injectArrayProperty = "preloadInjectArray";

/**
 * Where the key-value store keeps what online documents were opened, which decides for whose kind a front end
 * is loaded: Julian day number (text) to {"total": count, office type: count, …}.
 */
inline QString usageKey()
{
    return nrt::kcc::pluginPerfix() + QStringLiteral("cloudDocsRecord/openOnlineFile_content");
}

} // namespace ncefpreload
