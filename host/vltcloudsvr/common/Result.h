#pragma once

#include "base/Outcome.h"

#include <QString>

namespace vlt::cloudsvr {

/** Why something failed, for the log and the caller. */
struct Error
{
    QString text;
};

template <typename T>
using Result = base::Outcome<T, Error>;

} // namespace vlt::cloudsvr
