#pragma once

#include "zeolite/NxWebViewJSApiHandler.h"

/** What web applications may ask about the cloud drive. */
class NHelioBrowserDocDriveApiHandler final : public NxWebViewJSApiHandler
{
    Q_OBJECT
public:
    using NxWebViewJSApiHandler::NxWebViewJSApiHandler;

public Q_SLOTS:
    /** Answers the drive's site in "result"; an error when the deployment has none. */
    void getDriveInfo(NxWebViewJSContext& context);
};
