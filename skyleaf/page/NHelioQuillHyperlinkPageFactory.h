#pragma once

#include "nheliostat/NHelioBrowserPageRoot.h"

/** Makes the pages for links that the web application opens in a new page. */
class NHelioQuillHyperlinkPageFactory : public IHelioBrowserPageFactory
{
public:
    NHelioAppPage* createPage() override;
};
