#pragma once

#include <QNetworkAccessManager>
#include <QUrl>

namespace nrt {

/**
 * The access manager of native requests: no proxy, no cache, no cookie jar of its own, and connections go
 * where the deployment maps a host to, with that host's name in the request. The certificate of a mapped host
 * is not verified, since the mapping already says who answers.
 */
class NNetworkAccessManager : public QNetworkAccessManager
{
public:
    explicit NNetworkAccessManager(QObject* parent = nullptr);

protected:
    QNetworkReply* createRequest(Operation operation, const QNetworkRequest& request,
                                 QIODevice* outgoingData) override;
};

/** The URL that the reply was asked for, with the host's name also where it is mapped. */
QUrl requestedUrl(const QNetworkReply& reply);

} // namespace nrt
