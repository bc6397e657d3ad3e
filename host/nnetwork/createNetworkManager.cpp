#include "nnetwork/NetworkManager.h"

#include "zeolite/NxLoggerLite.h"

extern "C" Q_DECL_EXPORT bool createNetworkManager(std::shared_ptr<INetworkManager>* manager,
                                                   const QString& proxy, const QString& userAgent,
                                                   const QString& cacheDir, const QString& options)
{
    const auto config = nnetwork::parseConfig(proxy, userAgent, cacheDir, options);
    if (!manager || !config) {
        NxLoggerLite::writeError(QStringLiteral("nnetwork"),
                                 QStringLiteral("no manager: its configuration cannot be met"));
        return false;
    }
    *manager = std::make_shared<nnetwork::NetworkManager>(*config);
    return true;
}

static_assert(std::is_same_v<decltype(&createNetworkManager), NCreateNetworkManager>);
