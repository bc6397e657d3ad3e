#pragma once

#include "proxy/NFpccombMirror.h"

/** Mirrors an item of the configuration centre into the key-value store. */
class NCloudFpccombProxy final : public NFpccombMirror
{
    Q_OBJECT
public:
    using NFpccombMirror::NFpccombMirror;
};
