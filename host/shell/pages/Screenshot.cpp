#include "shell/pages/Screenshot.h"

#include <QImage>
#include <QPixmap>
#include <QSaveFile>
#include <QScreen>
#include <QWidget>
#include <QWindow>

namespace shell {

namespace {

bool isOneColour(const QImage& image)
{
    const QRgb first = image.pixel(0, 0);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != first)
                return false;
        }
    }
    return true;
}

/** What the screen shows where the widget stands; null when the widget is not on a screen. */
QImage grabFromScreen(const QWidget& widget)
{
    const QWindow* window = widget.window()->windowHandle();
    if (!widget.isVisible() || !window || !window->screen())
        return {};
    const QPoint position = widget.mapTo(widget.window(), QPoint());
    return window->screen()
        ->grabWindow(window->winId(), position.x(), position.y(), widget.width(), widget.height())
        .toImage();
}

} // namespace

QString saveScreenshot(QWidget& widget, const QString& file)
{
    if (widget.size().isEmpty())
        return QStringLiteral("the page has no size");
    QImage image = widget.grab().toImage();
    // Content that is composed outside of the widget's own painting shows on the screen only.
    if (isOneColour(image)) {
        const QImage shown = grabFromScreen(widget);
        if (!shown.isNull())
            image = shown;
    }
    QSaveFile output(file);
    if (!output.open(QIODevice::WriteOnly) || !image.save(&output, "PNG") || !output.commit())
        return QStringLiteral("cannot write %1: %2").arg(file, output.errorString());
    return {};
}

} // namespace shell
