#pragma once

#include "base/Outcome.h"

#include <QString>

namespace shell {

/** Why something could not be had; the text is for people. */
struct Error
{
    QString text;
};

/** A value, or the reason why there is none. */
template <typename T>
using Result = base::Outcome<T, Error>;

} // namespace shell
