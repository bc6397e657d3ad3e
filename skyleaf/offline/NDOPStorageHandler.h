#pragma once

#include "offline/NDocsOfflinePageJSApiHandlerBase.h"

/** The script handler "docs.storage": what the page may do with local storage. */
class NDOPStorageHandler : public NDocsOfflinePageJSApiHandlerBase
{
    Q_OBJECT
public:
    using NDocsOfflinePageJSApiHandlerBase::NDocsOfflinePageJSApiHandlerBase;

    void setOfficeType(const QString& officeType) { m_officeType = officeType; }

public Q_SLOTS:
    void funcSwitch(NxWebViewJSContext& context);

private:
    QString m_officeType;
};
