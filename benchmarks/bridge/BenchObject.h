#pragma once

#include "zeolite/NxWebViewAsynJSObject.h"

/** The script object under measurement: the same two methods as the bare echo. */
class BenchObject final : public NxWebViewAsynJSObject
{
    Q_OBJECT
public:
    using NxWebViewAsynJSObject::NxWebViewAsynJSObject;

public Q_SLOTS:
    void ping(NxWebViewJSContext& context);
    void produce(NxWebViewJSContext& context);
};
