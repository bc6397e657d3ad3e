#include "nheliostat/browser/CookieWriter.h"

#include <QDateTime>
#include <QTimer>
#include <QUrl>
#include <QWebEngineCookieStore>

#include <algorithm>

namespace nheliostat::browser {

namespace {

constexpr int patienceMs = 2000;

/** The host that a cookie belongs to; the store puts a dot before those that hold for subdomains too. */
QString ownerOf(const QNetworkCookie& cookie, const QString& host)
{
    const QString domain = cookie.domain().isEmpty() ? host : cookie.domain();
    return domain.startsWith(QLatin1Char('.')) ? domain.mid(1) : domain;
}

/** What no store takes; asking it would let its report of a like cookie pass for this one. */
bool isRefused(const QUrl& url, const QNetworkCookie& cookie)
{
    const QString owner = ownerOf(cookie, url.host()).toLower();
    const bool isForeign =
        url.host() != owner && !url.host().endsWith(QLatin1Char('.') + owner, Qt::CaseInsensitive);
    return cookie.name().isEmpty() || !url.isValid() || url.host().isEmpty() || isForeign ||
           (cookie.isSecure() && url.scheme() != QLatin1String("https"));
}

} // namespace

CookieWriter::CookieWriter(QWebEngineCookieStore& store, QObject* parent)
    : QObject(parent)
    , m_store(store)
{
    connect(&store, &QWebEngineCookieStore::cookieAdded, this, &CookieWriter::takeAdded);
}

void CookieWriter::set(const QUrl& url, const QNetworkCookie& cookie, Completion completion)
{
    if (isRefused(url, cookie)) {
        QTimer::singleShot(0, this, [completion = std::move(completion)] {
            if (completion)
                completion(false);
        });
        return;
    }
    const int id = ++m_lastId;
    m_waiting.append({id, cookie, url.host(), std::move(completion)});
    m_store.setCookie(cookie, url);
    // A cookie that is over on arrival is never reported as added: it is stored by being gone.
    const bool isRemoval =
        cookie.expirationDate().isValid() && cookie.expirationDate() < QDateTime::currentDateTimeUtc();
    QTimer::singleShot(isRemoval ? 0 : patienceMs, this,
                       [this, id, isRemoval] { endWaiting(id, isRemoval); });
}

void CookieWriter::takeAdded(const QNetworkCookie& cookie)
{
    const auto isSame = [&cookie](const Waiting& waiting) {
        return waiting.cookie.name() == cookie.name() && waiting.cookie.value() == cookie.value() &&
               ownerOf(waiting.cookie, waiting.host).compare(ownerOf(cookie, {}), Qt::CaseInsensitive) == 0;
    };
    const auto found = std::find_if(m_waiting.cbegin(), m_waiting.cend(), isSame);
    if (found != m_waiting.cend())
        endWaiting(found->id, true);
}

void CookieWriter::endWaiting(int id, bool stored)
{
    const auto hasId = [id](const Waiting& waiting) { return waiting.id == id; };
    const auto found = std::find_if(m_waiting.begin(), m_waiting.end(), hasId);
    if (found == m_waiting.end())
        return;
    const Completion completion = std::move(found->completion);
    m_waiting.erase(found);
    if (completion)
        completion(stored);
}

} // namespace nheliostat::browser
