#pragma once

#include "nheliostat/NHelioPluginWidgetFactory.h"

/** Makes pages of local documents; registered as long as it lives. */
class LocalDocumentPageItem final : public NHelioPluginWidgetFactoryItemBase
{
public:
    /** `offersSystem`: whether the pages may hand files to programs of the system. */
    explicit LocalDocumentPageItem(bool offersSystem);
    ~LocalDocumentPageItem() override;

    QWidget* createWidget(QWidget* parent) override;
    bool hasMethod(const QString&) const override { return false; }

private:
    bool m_offersSystem;
};
