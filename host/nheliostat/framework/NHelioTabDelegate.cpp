#include "nheliostat/NHelioSubPage.h"

QIcon NHelioTabDelegate::getIcon(qreal devicePixelRatio) const
{
    Q_UNUSED(devicePixelRatio)
    return {};
}
