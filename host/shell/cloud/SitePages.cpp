#include "shell/cloud/SitePages.h"

#include "nrt/networkAccess.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrlQuery>

#include <utility>

namespace shell::sitepages {

namespace {

constexpr int timeoutMs = 5000;
constexpr int statusOk = 200;

QUrl pageOf(const QString& site, const QString& path, const QVector<std::pair<QString, QString>>& items)
{
    QUrl url(site);
    if (!url.isValid() || url.host().isEmpty())
        return {};
    url.setPath(path);
    QUrlQuery query;
    for (const auto& [name, value] : items) {
        // A plus would be read as a space.
        if (!value.isEmpty())
            query.addQueryItem(name, QString::fromLatin1(QUrl::toPercentEncoding(value)));
    }
    url.setQuery(query.isEmpty() ? QString() : query.toString(QUrl::FullyEncoded));
    return url;
}

struct Fetched
{
    int status = 0; //!< 0: no answer
    QByteArray body;
};

void fetch(QNetworkAccessManager& access, const QUrl& url, QObject* context,
           const std::function<void(const Fetched&)>& done)
{
    QNetworkRequest request(url);
    request.setTransferTimeout(timeoutMs);
    QNetworkReply* reply = access.get(request);
    QObject::connect(reply, &QNetworkReply::finished, context, [reply, done] {
        const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
        done(reply->error() == QNetworkReply::NoError ? Fetched{status.toInt(), reply->readAll()}
                                                      : Fetched());
    });
}

} // namespace

QUrl membership(const QString& site, const QString& source)
{
    return pageOf(site, QStringLiteral("/membership"), {{QStringLiteral("source"), source}});
}

QUrl drive(const QString& site, const QString& groupId, const QString& folderId)
{
    QUrl url = pageOf(site, QStringLiteral("/drive"), {});
    const QString top = QStringLiteral("0");
    if (url.isValid() && !(groupId.isEmpty() && folderId.isEmpty()))
        url.setFragment((groupId.isEmpty() ? top : groupId) + u'/' + (folderId.isEmpty() ? top : folderId));
    return url;
}

void whetherServed(const QUrl& url, QObject* context, std::function<void(bool isServed)> done)
{
    auto* access = new nrt::NNetworkAccessManager(context);
    const auto judge = [access, url, context, done = std::move(done)](const Fetched& page) {
        if (page.status != statusOk) {
            access->deleteLater();
            done(false);
            return;
        }
        // A site may answer its start page for whatever it does not have.
        const auto compare = [access, page, done](const Fetched& start) {
            access->deleteLater();
            done(page.body != start.body);
        };
        fetch(*access, url.resolved(QUrl(QStringLiteral("/"))), context, compare);
    };
    fetch(*access, url, context, judge);
}

} // namespace shell::sitepages
