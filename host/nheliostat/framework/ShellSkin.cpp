#include "nheliostat/framework/ShellSkin.h"

#include <QGuiApplication>

QPalette ShellSkin::palette(const QString& name) const
{
    Q_UNUSED(name)
    if (!m_dark)
        return QGuiApplication::palette();
    QPalette dark(QColor(0x2b, 0x2d, 0x31), QColor(0x1f, 0x21, 0x24));
    dark.setColor(QPalette::Base, QColor(0x1f, 0x21, 0x24));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        dark.setColor(role, QColor(0xe6, 0xe6, 0xe6));
    return dark;
}
