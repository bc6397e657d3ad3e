#pragma once

#include <QIcon>

/** Like helioFileIcon, but null for a suffix that no kind of file is known for. */
QIcon knownFileIcon(const QString& suffix);
