#include "ServerOptions.h"

#include <gmock/gmock.h>

#include "support/TemporarySite.h"

namespace documents {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class ServerOptionsTest : public testing::Test
{
protected:
    Result<ServerOptions> parse(const QStringList& extra) const
    {
        return parseOptions(QStringList{QStringLiteral("server"), QStringLiteral("--documents"),
                                        place.documents(), QStringLiteral("--site"), place.site()} +
                            extra);
    }

    TemporarySite place;
};

QStringList words(const char* text)
{
    return QString::fromUtf8(text).split(u' ');
}

TEST_F(ServerOptionsTest, readsValuesAndDefaults)
{
    const auto plain = parse({QStringLiteral("--packages"), place.site()});
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->packageDirectory, place.site());
    EXPECT_THAT(plain->hostNames, ElementsAre("localhost", "127.0.0.1", "docs.skyleaf.test"));

    const auto full =
        parse(words("--http-port 0 --https-port=65535 --rtt-ms 40 --kbps 5000 --ready-file r "
                    "--access-log l --session k1 --session k2 --host-name a.test --host-name b.test"));
    ASSERT_TRUE(full);
    EXPECT_EQ(full->httpPort, 0);
    EXPECT_EQ(full->httpsPort, 65535);
    EXPECT_EQ(full->link.rttMs, 40);
    EXPECT_EQ(full->link.kbps, 5000);
    EXPECT_EQ(full->readyFile, QStringLiteral("r"));
    EXPECT_EQ(full->accessLog, QStringLiteral("l"));
    EXPECT_EQ(full->hostNames.back(), "b.test");
    EXPECT_EQ(full->sessions, words("k1 k2"));
}

TEST_F(ServerOptionsTest, mistakesAreNamed)
{
    const struct
    {
        const char* arguments;
        const char* named;
    } cases[] = {
        {"--nonsense", "nonsense"},
        {"--http-port 65536", "--http-port"},
        {"--https-port x", "--https-port"},
        {"--rtt-ms -1", "--rtt-ms"},
        {"--session a;b", "--session"},
        {"--kbps 1.5", "--kbps"},
        {"stray", "stray"},
        {"--host-name a,b", "--host-name"},
        {"--ready-file=", "--ready-file"},
        {"--kbps", "kbps"},
        {"--site /nowhere/at/all", "--site"},
        {"--packages /nowhere/at/all", "--packages"},
    };
    for (const auto& entry : cases) {
        const auto options = parse(words(entry.arguments));
        ASSERT_FALSE(options) << entry.arguments;
        EXPECT_THAT(options.error().text.toStdString(), HasSubstr(entry.named));
    }
    EXPECT_THAT(parseOptions(words("server")).error().text.toStdString(), HasSubstr("--documents"));
    EXPECT_EQ(parseOptions(words("server --help"))->wish, ServerOptions::Wish::ShowHelp);
}

} // namespace
} // namespace documents
