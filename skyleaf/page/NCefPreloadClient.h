#pragma once

#include "ncefpreload/NCefPreload.h"

#include <QString>

#include <memory>

class QLibrary;

/**
 * The library that keeps browsers created in advance. It is loaded once; while it is not there, or lacks the
 * function that is called, a call answers false or does nothing. User-interface thread.
 */
class NCefPreloadClient
{
public:
    /** Created on first use; tests start with a fresh one after nreadonce::resetForTest(). */
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
    NCefPreloadClient();

    /** Null when the library or the function is not there. */
    template <typename Function>
    Function resolve(const char* name) const;

    std::weak_ptr<QLibrary> m_library;
};
