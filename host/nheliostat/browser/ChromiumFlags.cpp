#include "nheliostat/browser/ChromiumFlags.h"

namespace nheliostat::browser {

namespace {

const QLatin1String disableFeatures("--disable-features");

QString switchOf(const QString& flag)
{
    return flag.section(QLatin1Char('='), 0, 0);
}

QString unitedFeatures(const QString& first, const QString& second)
{
    QStringList names = first.section(QLatin1Char('='), 1).split(QLatin1Char(','), Qt::SkipEmptyParts);
    names += second.section(QLatin1Char('='), 1).split(QLatin1Char(','), Qt::SkipEmptyParts);
    names.removeDuplicates();
    return disableFeatures + QLatin1Char('=') + names.join(QLatin1Char(','));
}

} // namespace

QStringList wantedChromiumFlags(bool withoutGpu)
{
    QStringList flags{QStringLiteral("--disable-background-networking"),
                      QStringLiteral("--disable-component-update"),
                      QStringLiteral("--disable-domain-reliability"),
                      QStringLiteral("--disable-sync"),
                      QStringLiteral("--no-pings"),
                      QStringLiteral("--disable-features=DnsOverHttps,NetworkPrediction,Reporting")};
    if (withoutGpu)
        flags << QStringLiteral("--disable-gpu");
    return flags;
}

QString mergedChromiumFlags(const QString& existing, const QStringList& wanted)
{
    QStringList flags = existing.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString& flag : wanted) {
        const auto same = [&flag](const QString& other) { return switchOf(other) == switchOf(flag); };
        const auto found = std::find_if(flags.begin(), flags.end(), same);
        if (found == flags.end())
            flags << flag;
        else if (switchOf(flag) == disableFeatures)
            *found = unitedFeatures(*found, flag);
    }
    return flags.join(QLatin1Char(' '));
}

} // namespace nheliostat::browser
