#include "nheliostat/browser/CookieWriter.h"

#include <QDateTime>
#include <QTimer>
#include <QUrl>
#include <QWebEngineCookieStore>

#include <algorithm>

namespace nheliostat::browser {

namespace {

constexpr int patienceMs = 2000;

} // namespace

CookieWriter::CookieWriter(QWebEngineCookieStore& store, QObject* parent)
    : QObject(parent)
    , m_store(store)
{
    connect(&store, &QWebEngineCookieStore::cookieAdded, this, &CookieWriter::takeAdded);
}

void CookieWriter::set(const QUrl& url, const QNetworkCookie& cookie, Completion completion)
{
    const int id = ++m_lastId;
    m_waiting.append({id, cookie, std::move(completion)});
    const bool isValid = !cookie.name().isEmpty() && url.isValid() && !url.host().isEmpty();
    const bool isRemoval =
        cookie.expirationDate().isValid() && cookie.expirationDate() < QDateTime::currentDateTimeUtc();
    if (isValid)
        m_store.setCookie(cookie, url);
    // A cookie that is over on arrival is never reported as added: it is stored by being gone.
    const int delayMs = isValid && !isRemoval ? patienceMs : 0;
    QTimer::singleShot(delayMs, this,
                       [this, id, isRemoval, isValid] { endWaiting(id, isValid && isRemoval); });
}

void CookieWriter::takeAdded(const QNetworkCookie& cookie)
{
    const auto isSame = [&cookie](const Waiting& waiting) {
        return waiting.cookie.name() == cookie.name() && waiting.cookie.value() == cookie.value();
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
