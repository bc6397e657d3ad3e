#pragma once

#include <QPalette>
#include <QWidget>

namespace shell {

/** The colours of the shell's skin for windows of the cloud. */
QPalette windowPalette();

/** A window of the cloud beside the main windows: of their looks, closed with the one that it belongs to. */
class CloudWindow : public QWidget
{
    Q_OBJECT
public:
    /** `name` tells the windows apart in the log and in shell.state. */
    CloudWindow(const QString& name, const QString& title, QWidget* parent);

    /** Shows the window before the others, in the palette of the shell's skin. */
    void present();
};

} // namespace shell
