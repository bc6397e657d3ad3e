#include "page/NCefPreloadClient.h"

// The library is not there yet: no browser is kept in advance.

NCefPreloadClient& NCefPreloadClient::instance()
{
    static NCefPreloadClient client;
    return client;
}

QString NCefPreloadClient::containerName()
{
    return QStringLiteral("cloudDocsPreCreateBrowser");
}

bool NCefPreloadClient::createContainer(const QString& name)
{
    Q_UNUSED(name)
    return false;
}

bool NCefPreloadClient::createBrowser(const QString& name, QWidget* page, NHelioBrowserCreator* creator,
                                      const NHelioBrowserCreateInfo& info)
{
    Q_UNUSED(name)
    Q_UNUSED(page)
    Q_UNUSED(creator)
    Q_UNUSED(info)
    return false;
}

void NCefPreloadClient::recordFeatureUsed(const QString& name)
{
    Q_UNUSED(name)
}

bool NCefPreloadClient::recoverContainer(const QString& name, NxWebViewContainer* container)
{
    Q_UNUSED(name)
    Q_UNUSED(container)
    return false;
}
