#pragma once

#include "zeolite/NxWebViewJSApiHandler.h"

/** The script handler "docs.sorrel": the assistant in the side panel. User-interface thread. */
class NSorrelDockpanelJsHandler : public NxWebViewJSApiHandler
{
    Q_OBJECT
public:
    using NxWebViewJSApiHandler::NxWebViewJSApiHandler;

public Q_SLOTS:
    /** Writes no reply without arguments, or where there is no panel to notify. */
    void notifyDockPanelSorrelMsg(NxWebViewJSContext& context);
    void isDockPanelEntryVisible(NxWebViewJSContext& context);
    void generateTaskId(NxWebViewJSContext& context);
};
