#pragma once

#include "nheliostat/NHelioBrowserPageRoot.h"

#include <QString>

class NxWebViewContainer;
class QWidget;

/** The library that keeps browsers created in advance. Without it every call answers false or does nothing.
 */
class NCefPreloadClient
{
public:
    static NCefPreloadClient& instance();
    /** The container that all cloud documents pages share. */
    static QString containerName();

    bool createContainer(const QString& name);
    /** True when a browser was handed to `creator`. */
    bool createBrowser(const QString& name, QWidget* page, NHelioBrowserCreator* creator,
                       const NHelioBrowserCreateInfo& info);
    void recordFeatureUsed(const QString& name);
    /** True when the container was taken back, with its ownership. */
    bool recoverContainer(const QString& name, NxWebViewContainer* container);

private:
    NCefPreloadClient() = default;
};
