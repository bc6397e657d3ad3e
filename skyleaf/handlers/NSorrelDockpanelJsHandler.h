#pragma once

#include "zeolite/NxWebViewJSApiHandler.h"

/** The script handler "docs.sorrel": the assistant in the side panel. */
class NSorrelDockpanelJsHandler : public NxWebViewJSApiHandler
{
    Q_OBJECT
public:
    using NxWebViewJSApiHandler::NxWebViewJSApiHandler;

public Q_SLOTS:
    void notifyDockPanelSorrelMsg(NxWebViewJSContext& context);
    void isDockPanelEntryVisible(NxWebViewJSContext& context);
    void generateTaskId(NxWebViewJSContext& context);
};
