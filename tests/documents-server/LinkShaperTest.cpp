#include "http/LinkShaper.h"

#include <gmock/gmock.h>

namespace documents {
namespace {

using namespace std::chrono_literals;

const LinkShaper::TimePoint start{1h};

TEST(LinkShaper, withoutARateOnlyRoundTripsCount)
{
    LinkShaper shaper({40, 0});
    EXPECT_EQ(shaper.setUpDelay(true), 2 * shaper.setUpDelay(false)) << "TLS takes another round trip";
    EXPECT_EQ(shaper.requestDelay(), 40ms);
    EXPECT_EQ(shaper.reserve(100'000, start, std::nullopt), start);
}

TEST(LinkShaper, aReplyTakesItsBitsDividedByTheRate)
{
    LinkShaper shaper({0, 8000}); // a thousand bytes a millisecond
    EXPECT_EQ(shaper.pieceSize(1'000'000), 10'000U);
    EXPECT_EQ(shaper.pieceSize(7), 7U);
    EXPECT_EQ(shaper.reserve(10'000, start, std::nullopt), start + 10ms);
    EXPECT_EQ(shaper.reserve(10'000, start + 1s, std::nullopt), start + 1010ms)
        << "an idle line saves nothing up";
}

TEST(LinkShaper, connectionsShareTheLine)
{
    LinkShaper shaper({0, 8000});
    const auto first = shaper.reserve(10'000, start, std::nullopt);
    const auto second = shaper.reserve(10'000, start, std::nullopt);
    EXPECT_EQ(second, start + 20ms);
    EXPECT_EQ(shaper.reserve(10'000, first, first), start + 30ms);
}

TEST(LinkShaper, lateTimersDoNotSlowTheLine)
{
    LinkShaper shaper({0, 8000});
    auto gone = shaper.reserve(10'000, start, std::nullopt);
    for (int piece = 1; piece < 100; ++piece)
        gone = shaper.reserve(10'000, gone + 3ms, gone);
    EXPECT_EQ(gone, start + 1s);
    // A client that stalls for a second does not get that second's bytes at once.
    EXPECT_EQ(shaper.reserve(10'000, gone + 1s, gone), gone + 1s - 20ms + 10ms);
}

TEST(LinkShaper, aNewRateForgetsTheOldQueue)
{
    LinkShaper shaper({0, 8});
    shaper.reserve(100'000, start, std::nullopt);
    shaper.setSettings({0, 8000});
    EXPECT_EQ(shaper.reserve(1000, start, std::nullopt), start + 1ms);
}

} // namespace
} // namespace documents
