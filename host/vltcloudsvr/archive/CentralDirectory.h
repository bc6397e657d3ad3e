#pragma once

#include "vltcloudsvr/common/Result.h"

#include <QByteArray>
#include <QVector>

class QIODevice;

namespace vlt::cloudsvr {

/**
 * The names of a zip file's entries as they are stored, in order. The library gives a name up to its first
 * NUL only, which would hide what another program sees there.
 */
Result<QVector<QByteArray>> storedNames(QIODevice& zip);

} // namespace vlt::cloudsvr
