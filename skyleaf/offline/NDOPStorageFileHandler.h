#pragma once

#include "offline/NDocsOfflinePageJSApiHandlerBase.h"

/** The script handler "docs.storage.file": files inside a local storage package. */
class NDOPStorageFileHandler : public NDocsOfflinePageJSApiHandlerBase
{
    Q_OBJECT
public:
    using NDocsOfflinePageJSApiHandlerBase::NDocsOfflinePageJSApiHandlerBase;

public Q_SLOTS:
    void create(NxWebViewJSContext& context);
    void read(NxWebViewJSContext& context);
    void update(NxWebViewJSContext& context);
    void remove(NxWebViewJSContext& context);
    void unzip(NxWebViewJSContext& context);
    void readDataSteam(NxWebViewJSContext& context);
    void writeDataSteam(NxWebViewJSContext& context);
};
