#pragma once

#include <QString>

class QWidget;

namespace shell {

/**
 * Writes what the widget shows to a PNG file, through a temporary one. Empty, or the error text: a widget
 * without size, a file that cannot be written.
 */
QString saveScreenshot(QWidget& widget, const QString& file);

} // namespace shell
