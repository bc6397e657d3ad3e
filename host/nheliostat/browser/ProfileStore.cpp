#include "nheliostat/browser/ProfileStore.h"

#include "nheliostat/browser/CookieWriter.h"
#include "zeolite/NxLoggerLite.h"

#include <QDir>
#include <QUrl>
#include <QWebEngineDownloadItem>
#include <QWebEngineProfile>
#include <QWebEngineSettings>

#include <algorithm>

namespace nheliostat::browser {

namespace {

QString directoryPath(QString path)
{
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return path.isEmpty() ? QString() : QDir::cleanPath(path);
}

void refuseDownload(QWebEngineDownloadItem* item)
{
    NxLoggerLite::writeInfo(QStringLiteral("Browser"),
                            QStringLiteral("download cancelled: ") + item->url().toString().left(500));
    item->cancel();
}

std::unique_ptr<QWebEngineProfile> openProfile(const QString& cachePath, const QString& cookiePath,
                                               size_t number)
{
    if (cachePath.isEmpty() && cookiePath.isEmpty())
        return std::make_unique<QWebEngineProfile>();
    auto profile = std::make_unique<QWebEngineProfile>(QStringLiteral("profile%1").arg(number));
    profile->setCachePath(cachePath.isEmpty() ? cookiePath : cachePath);
    profile->setPersistentStoragePath(cookiePath.isEmpty() ? cachePath : cookiePath);
    profile->setHttpCacheType(QWebEngineProfile::DiskHttpCache);
    return profile;
}

std::unique_ptr<QWebEngineProfile> makeProfile(const QString& cachePath, const QString& cookiePath,
                                               size_t number)
{
    std::unique_ptr<QWebEngineProfile> profile = openProfile(cachePath, cookiePath, number);
    QWebEngineSettings* const settings = profile->settings();
    // Unknown protocols are decided on by the view, with or without a click.
    settings->setUnknownUrlSchemePolicy(QWebEngineSettings::AllowAllUnknownUrlSchemes);
    settings->setAttribute(QWebEngineSettings::PluginsEnabled, false);
    settings->setAttribute(QWebEngineSettings::DnsPrefetchEnabled, false);
    QObject::connect(profile.get(), &QWebEngineProfile::downloadRequested, profile.get(), &refuseDownload);
    return profile;
}

} // namespace

ProfileStore::ProfileStore() = default;
ProfileStore::~ProfileStore() = default;

QWebEngineProfile* ProfileStore::profile(const QString& cachePath, const QString& cookiePath)
{
    const QPair<QString, QString> key(directoryPath(cachePath), directoryPath(cookiePath));
    const bool isNamed = !key.first.isEmpty() || !key.second.isEmpty();
    if (!isNamed && m_firstNamed)
        return m_firstNamed;
    const auto found = m_entries.find(key);
    if (found != m_entries.end())
        return found->second.profile.get();

    Entry made;
    made.profile = makeProfile(key.first, key.second, m_entries.size());
    made.cookies = std::make_unique<CookieWriter>(*made.profile->cookieStore());
    QWebEngineProfile* const profile = m_entries.emplace(key, std::move(made)).first->second.profile.get();
    if (isNamed && !m_firstNamed)
        m_firstNamed = profile;
    return profile;
}

CookieWriter* ProfileStore::cookies(const QWebEngineProfile* profile) const
{
    const auto holds = [profile](const auto& entry) { return entry.second.profile.get() == profile; };
    const auto found = std::find_if(m_entries.cbegin(), m_entries.cend(), holds);
    Q_ASSERT(found != m_entries.cend());
    return found->second.cookies.get();
}

} // namespace nheliostat::browser
