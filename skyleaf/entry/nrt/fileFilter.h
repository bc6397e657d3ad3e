#pragma once

#include <QString>

namespace nrt {

/** What kind of document a file is. */
enum class FileFilter { Other = 0, Text = 1, Presentation = 2, Spreadsheet = 3, Pdf = 4 };

/** The kind of a file type, given as its suffix without the dot; letter case does not matter. */
FileFilter fileFilterType(const QString& suffix);

} // namespace nrt
