#include "shell/config/GatewaySettings.h"

#include <QString>

#include <utility>

namespace shell {

GatewayLimits gatewayLimits(const std::function<QVariant(const QString& name)>& value)
{
    constexpr int oneDayMs = 24 * 60 * 60 * 1000;
    GatewayLimits limits;
    const std::pair<QString, GatewayLimits::Time*> names[] = {
        {QStringLiteral("idleMs"), &limits.idle},
        {QStringLiteral("requestHeadMs"), &limits.requestHead},
        {QStringLiteral("handshakeMs"), &limits.handshake},
        {QStringLiteral("refusedMs"), &limits.refused},
        {QStringLiteral("farewellMs"), &limits.farewell},
        {QStringLiteral("connectMs"), &limits.connect},
        {QStringLiteral("serverIdleMs"), &limits.serverIdle},
        {QStringLiteral("answerHeadMs"), &limits.answerHead},
        {QStringLiteral("silenceMs"), &limits.silence},
    };
    for (const auto& [name, limit] : names) {
        bool isNumber = false;
        const int ms = value(name).toInt(&isNumber);
        if (isNumber && ms >= 1 && ms <= oneDayMs)
            *limit = GatewayLimits::Time(ms);
    }
    return limits;
}

} // namespace shell
