#pragma once

#include "nheliostat/NHelioApplication.h"

class ShellSkin final : public NHelioSkin
{
public:
    explicit ShellSkin(bool dark)
        : m_dark(dark)
    {
    }
    bool isDark() const override { return m_dark; }
    /** One palette serves all kinds of windows. */
    QPalette palette(const QString& name) const override;
    void setDark(bool dark) { m_dark = dark; }

private:
    bool m_dark;
};
