#pragma once

#include <QByteArray>
#include <QIcon>
#include <QString>

/** The shell's icons and style sheets, light and dark. */
namespace ShellLook {

/** The drawing of an icon ("add", "close", "page") in the colour of the skin; empty for another name. */
QByteArray iconSvg(const QString& name, bool dark);
/** The same as an icon; null for another name. */
QIcon icon(const QString& name, bool dark);
QString styleSheet(bool dark);

} // namespace ShellLook
