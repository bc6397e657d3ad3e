#include "nheliostat/NHelioPage.h"

#include "nheliostat/NHelioSubPage.h"

NHelioPage::NHelioPage(QWidget* parent)
    : NHelioPluginWidget(parent)
    , m_subPages(new NHelioSubPages(this))
{
}

NHelioPage::~NHelioPage() = default;

NHelioSubPage* NHelioPage::initialSubPage() const
{
    return m_initialSubPage;
}

void NHelioPage::setInitialSubPage(NHelioSubPage* subPage)
{
    m_initialSubPage = subPage;
}
