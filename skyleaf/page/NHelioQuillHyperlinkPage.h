#pragma once

#include "page/NHelioQuillPreviewPage.h"

/** The page of a link that the web application opens in a new page; never registered with the shell. */
class NHelioQuillHyperlinkPage : public NHelioQuillPreviewPage
{
public:
    using NHelioQuillPreviewPage::NHelioQuillPreviewPage;
};
