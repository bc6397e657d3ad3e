#pragma once

#include "nheliostat/NHelioSubPage.h"

/** The sub page of a local document: its tab shows the icon of the file's kind. */
class LocalDocumentSubPage final : public NHelioSubPage
{
    Q_OBJECT
public:
    using NHelioSubPage::NHelioSubPage;

    bool supportsStandaloneWindow() const override { return true; }
    NHelioTabDelegate* createTabDelegate(QObject* parent) override;
};
