#include "nheliostat/NHelioBrowserPageRoot.h"

NHelioBrowserPageRoot::NHelioBrowserPageRoot(QWidget* parent)
    : NHelioAppPage(parent)
{
}
