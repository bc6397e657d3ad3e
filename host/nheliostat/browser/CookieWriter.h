#pragma once

#include <QList>
#include <QNetworkCookie>
#include <QObject>

#include <functional>

class QUrl;
class QWebEngineCookieStore;

namespace nheliostat::browser {

/**
 * Stores cookies in a profile and tells when they are stored. User-interface thread.
 *
 * The store only reports cookies that it took: one that is not reported within two seconds counts as refused.
 * A report ends the oldest wait for that cookie.
 */
class CookieWriter final : public QObject
{
    Q_OBJECT
public:
    using Completion = std::function<void(bool stored)>;

    /** The store outlives the writer. */
    explicit CookieWriter(QWebEngineCookieStore& store, QObject* parent = nullptr);

    /** `completion` (may be empty) is called once, never from inside this call. */
    void set(const QUrl& url, const QNetworkCookie& cookie, Completion completion);

private:
    struct Waiting
    {
        int id = 0;
        QNetworkCookie cookie;
        QString host; //!< of the URL
        Completion completion;
    };

    void takeAdded(const QNetworkCookie& cookie);
    void endWaiting(int id, bool stored);

    QWebEngineCookieStore& m_store;
    QList<Waiting> m_waiting;
    int m_lastId = 0;
};

} // namespace nheliostat::browser
