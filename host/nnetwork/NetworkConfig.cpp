#include "nnetwork/NetworkConfig.h"

#include <QStringList>

#include <limits>

namespace nnetwork {
namespace {

bool takeOption(const QString& option, NetworkConfig& config)
{
    const int equals = option.indexOf(u'=');
    const QString name = option.left(equals).trimmed();
    bool isNumber = false;
    const qint64 number = option.mid(equals + 1).trimmed().toLongLong(&isNumber);
    if (equals < 0 || !isNumber || number <= 0 || number > std::numeric_limits<int>::max())
        return false;
    if (name == QLatin1String("maxBodyBytes"))
        config.maxBodyBytes = number;
    else if (name == QLatin1String("timeoutMs"))
        config.timeoutMs = static_cast<int>(number);
    else
        return false;
    return true;
}

} // namespace

std::optional<NetworkConfig> parseConfig(const QString& proxy, const QString& userAgent,
                                         const QString& cacheDir, const QString& options)
{
    if (!proxy.isEmpty() || !cacheDir.isEmpty())
        return std::nullopt;
    NetworkConfig config;
    config.userAgent = userAgent;
    const QStringList parts = options.split(u';', Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        if (!takeOption(part, config))
            return std::nullopt;
    }
    return config;
}

} // namespace nnetwork
