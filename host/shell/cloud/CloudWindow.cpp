#include "shell/cloud/CloudWindow.h"

#include "nheliostat/NHelioApplication.h"
#include "zeolite/NxLoggerLite.h"

#include <QGuiApplication>

namespace shell {

QPalette windowPalette()
{
    const NHelioApplication* application = NHelioApplication::instance();
    const NHelioSkin* skin = application ? application->helioSkin() : nullptr;
    return skin ? skin->palette(QStringLiteral("CloudWindow")) : QGuiApplication::palette();
}

CloudWindow::CloudWindow(const QString& name, const QString& title, QWidget* parent)
    : QWidget(parent, Qt::Window)
{
    setObjectName(name);
    setWindowTitle(title);
    setAttribute(Qt::WA_QuitOnClose, false);
    setAutoFillBackground(true);
}

void CloudWindow::present()
{
    setPalette(windowPalette());
    if (!isVisible())
        NxLoggerLite::writeInfo(QStringLiteral("shell"),
                                QStringLiteral("window shown: %1 \"%2\"").arg(objectName(), windowTitle()));
    show();
    raise();
    activateWindow();
}

} // namespace shell
