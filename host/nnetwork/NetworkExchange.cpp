#include "nnetwork/NetworkExchange.h"

#include "nnetwork/RequestRules.h"
#include "nnetwork/SendDelay.h"

#include "zeolite/NxLoggerLite.h"

#include <QNetworkAccessManager>

namespace nnetwork {
namespace {

// What modules send is JSON; Qt would call it a form.
const QByteArray defaultContentType = QByteArrayLiteral("application/json");

} // namespace

NetworkExchange::NetworkExchange(std::shared_ptr<QNetworkAccessManager> access, const NetworkConfig& config,
                                 QString tag, NetworkAsk ask, QObject* parent)
    : QObject(parent)
    , m_access(std::move(access))
    , m_config(config)
    , m_tag(std::move(tag))
    , m_ask(std::move(ask))
{
    m_silence.setSingleShot(true);
    m_silence.setInterval(m_config.timeoutMs);
    connect(&m_silence, &QTimer::timeout, this, &NetworkExchange::onTimeout);
}

NetworkExchange::~NetworkExchange()
{
    if (!m_reply)
        return;
    m_reply->disconnect(this);
    m_reply->abort();
    m_reply->deleteLater();
}

void NetworkExchange::start()
{
    const std::optional<QUrl> url = requestUrl(m_ask.url);
    if (!url) {
        end(QNetworkReply::ProtocolInvalidOperationError);
        return;
    }
    m_url = *url;
    m_outcome.asked = std::make_shared<const NetworkRequest>(m_url);
    m_elapsed.start();
    send();
}

void NetworkExchange::send()
{
    QNetworkRequest request(m_url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    if (!m_config.userAgent.isEmpty())
        request.setRawHeader("User-Agent", m_config.userAgent.toUtf8());
    applyHeaders(request, m_ask.headers);
    const bool posts = m_ask.method == "POST";
    if (posts && !request.hasRawHeader("Content-Type"))
        request.setRawHeader("Content-Type", defaultContentType);

    m_received.clear();
    m_reply = posts ? m_access->post(request, m_ask.body) : m_access->get(request);
    connect(m_reply, &QNetworkReply::readyRead, this, &NetworkExchange::onReadyRead);
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &NetworkExchange::onMetaDataChanged);
    connect(m_reply, &QNetworkReply::uploadProgress, this, &NetworkExchange::onProgress);
    connect(m_reply, &QNetworkReply::encrypted, this, &NetworkExchange::onEncrypted);
    connect(m_reply, &QNetworkReply::finished, this, &NetworkExchange::onFinished);
    m_silence.start();
    hurryBody();
}

void NetworkExchange::onProgress()
{
    m_silence.start();
}

void NetworkExchange::onEncrypted()
{
    onProgress();
    hurryBody();
}

/** The body leaves at a later turn of the event loop: there is time until then. */
void NetworkExchange::hurryBody()
{
    if (m_ask.method == "POST")
        turnOffSendDelay(portOf(m_reply->url()));
}

void NetworkExchange::onMetaDataChanged()
{
    onProgress();
    const QVariant length = m_reply->header(QNetworkRequest::ContentLengthHeader);
    if (length.isValid() && length.toLongLong() > m_config.maxBodyBytes)
        breakOff(QNetworkReply::OperationCanceledError);
}

void NetworkExchange::onReadyRead()
{
    onProgress();
    m_received += m_reply->readAll();
    if (m_received.size() > m_config.maxBodyBytes)
        breakOff(QNetworkReply::OperationCanceledError);
}

void NetworkExchange::onTimeout()
{
    breakOff(QNetworkReply::TimeoutError);
}

void NetworkExchange::breakOff(QNetworkReply::NetworkError error)
{
    if (m_brokenOff != QNetworkReply::NoError || !m_reply)
        return;
    m_brokenOff = error;
    m_reply->abort(); // finishes the reply
}

void NetworkExchange::onFinished()
{
    m_silence.stop();
    if (m_reply->isOpen())
        m_received += m_reply->readAll();
    if (m_received.size() > m_config.maxBodyBytes && m_brokenOff == QNetworkReply::NoError)
        m_brokenOff = QNetworkReply::OperationCanceledError;
    m_reply->deleteLater();
    conclude();
}

void NetworkExchange::conclude()
{
    QNetworkReply& reply = *m_reply;
    m_outcome.status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    QNetworkReply::NetworkError error = m_brokenOff == QNetworkReply::NoError ? reply.error() : m_brokenOff;
    if (isAnswer(error, m_outcome.status) && isCutShort(reply, m_outcome.status, m_received.size()))
        error = QNetworkReply::RemoteHostClosedError;
    m_outcome.headerMap = headersOf(reply);
    // Half a body is none: who asks for the status only would take it for the whole.
    const bool whole = isAnswer(error, m_outcome.status);
    m_outcome.bytes = whole ? std::move(m_received) : QByteArray();

    const Redirect redirect =
        whole ? redirectOf(m_url, m_outcome.status, reply.rawHeader("Location")) : Redirect();
    switch (redirect.kind) {
    case Redirect::Kind::None:
        end(error);
        break;
    case Redirect::Kind::Follow:
        follow(redirect);
        break;
    case Redirect::Kind::Refused:
        end(QNetworkReply::InsecureRedirectError);
        break;
    case Redirect::Kind::Broken:
        end(QNetworkReply::ProtocolFailure);
        break;
    }
}

void NetworkExchange::follow(const Redirect& redirect)
{
    if (m_redirects == maxRedirects) {
        end(QNetworkReply::TooManyRedirectsError);
        return;
    }
    ++m_redirects;
    m_url = redirect.url;
    if (redirect.asGet) {
        m_ask.method = QByteArrayLiteral("GET");
        m_ask.body.clear();
    }
    m_reply->disconnect(this);
    send();
}

void NetworkExchange::end(int error)
{
    m_outcome.error = error;
    m_outcome.timeMs = m_elapsed.isValid() ? m_elapsed.elapsed() : 0;
    if (error != QNetworkReply::NoError)
        logFailure();
    QMetaObject::invokeMethod(this, &NetworkExchange::deliver, Qt::QueuedConnection);
}

void NetworkExchange::deliver()
{
    // Nobody ends this object while it calls the completion, which may release its manager.
    setParent(nullptr);
    deleteLater();
    if (m_ask.completion && (!m_ask.hasContext || m_ask.context))
        m_ask.completion(&m_outcome);
}

void NetworkExchange::logFailure() const
{
    // The query may hold what is nobody's business.
    const QUrl shown =
        QUrl(m_ask.url).adjusted(QUrl::RemoveQuery | QUrl::RemoveUserInfo | QUrl::RemoveFragment);
    NxLoggerLite::writeWarning(QStringLiteral("nnetwork"),
                               QStringLiteral("%1: %2 %3 failed: error %4, status %5")
                                   .arg(m_tag, QString::fromLatin1(m_ask.method), shown.toString())
                                   .arg(m_outcome.error)
                                   .arg(m_outcome.status));
}

} // namespace nnetwork
