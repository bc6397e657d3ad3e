#include "nheliostat/NHelioSubPage.h"

NHelioSubPage* NHelioTabAssistant::currentSubPage() const
{
    return m_current;
}

void NHelioTabAssistant::activate(NHelioSubPage* subPage)
{
    if (!subPage)
        return;
    m_current = subPage;
    m_hidden = false;
    subPage->activate({}, true);
}
