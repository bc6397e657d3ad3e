#pragma once

#include <QString>

#include <optional>

namespace nnetwork {

/** What one manager keeps to. */
struct NetworkConfig
{
    static constexpr qint64 defaultMaxBodyBytes = 32 * 1024 * 1024;
    static constexpr int defaultTimeoutMs = 30'000;

    QString userAgent;                         ///< of requests that name none; empty: that of Qt
    qint64 maxBodyBytes = defaultMaxBodyBytes; ///< of a reply, decompressed
    int timeoutMs = defaultTimeoutMs;          ///< without a byte sent or received
};

/**
 * Reads the texts that configure a manager. `options` is a list like "maxBodyBytes=1000;timeoutMs=500", each
 * part optional, the numbers whole and above zero. Nothing for any other option, and for a proxy or a cache
 * directory: requests go straight to their servers and nothing is kept.
 */
std::optional<NetworkConfig> parseConfig(const QString& proxy, const QString& userAgent,
                                         const QString& cacheDir, const QString& options);

} // namespace nnetwork
