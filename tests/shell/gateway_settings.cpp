#include "shell/config/GatewaySettings.h"

#include <gtest/gtest.h>

#include <QMap>

using namespace std::chrono_literals;

namespace {

GatewayLimits limitsOf(const QMap<QString, QVariant>& settings)
{
    return shell::gatewayLimits([&settings](const QString& name) { return settings.value(name); });
}

} // namespace

TEST(GatewaySettings, SetWhatTheyNameAndNothingElse)
{
    const GatewayLimits limits = limitsOf({{QStringLiteral("idleMs"), 1500},
                                           {QStringLiteral("silenceMs"), QStringLiteral("20")},
                                           {QStringLiteral("connectMs"), 0},
                                           {QStringLiteral("farewellMs"), -5},
                                           {QStringLiteral("serverIdleMs"), 1e12},
                                           {QStringLiteral("refusedMs"), QStringLiteral("soon")}});
    const GatewayLimits usual;
    EXPECT_EQ(limits.idle, 1500ms);
    EXPECT_EQ(limits.silence, 20ms);
    EXPECT_EQ(limits.connect, usual.connect);
    EXPECT_EQ(limits.farewell, usual.farewell);
    EXPECT_EQ(limits.serverIdle, usual.serverIdle);
    EXPECT_EQ(limits.refused, usual.refused);
    EXPECT_EQ(limits.answerHead, usual.answerHead);
}
