#pragma once

#include <QPair>
#include <QString>

#include <map>
#include <memory>

class QWebEngineProfile;

namespace nheliostat::browser {

class CookieWriter;

/**
 * The Chromium profiles of the process: one for each pair of directories, shared by the views that name the
 * pair, and kept until the store goes. Every page must be gone by then. User-interface thread.
 */
class ProfileStore
{
public:
    ProfileStore();
    ~ProfileStore();

    /**
     * A "\" in a path separates directories. Both paths empty: the profile that was named first, so that
     * links open with the user's session; until there is one, a profile that keeps nothing on disk.
     */
    QWebEngineProfile* profile(const QString& cachePath, const QString& cookiePath);
    /** The writer for a profile of this store. */
    CookieWriter* cookies(const QWebEngineProfile* profile) const;

private:
    struct Entry
    {
        std::unique_ptr<QWebEngineProfile> profile;
        std::unique_ptr<CookieWriter> cookies;
    };

    std::map<QPair<QString, QString>, Entry> m_entries;
    QWebEngineProfile* m_firstNamed = nullptr;
};

} // namespace nheliostat::browser
