#include "shell/cloud/Diagnosis.h"

#include "nrt/networkAccess.h"

#include <QElapsedTimer>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QPointer>
#include <QStringList>
#include <QTcpSocket>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace shell {

namespace {

constexpr int longestCheckMs = 8000;
constexpr int serverErrors = 500;

QElapsedTimer started()
{
    QElapsedTimer timer;
    timer.start();
    return timer;
}

} // namespace

QString diagnosisReport(const QVector<DiagnosisCheck>& checks)
{
    QStringList lines;
    for (const DiagnosisCheck& check : checks) {
        const QString state = check.state == DiagnosisCheck::State::Good  ? QStringLiteral("ok")
                              : check.state == DiagnosisCheck::State::Bad ? QStringLiteral("FAILED")
                                                                          : QStringLiteral("running");
        lines.append(
            QStringLiteral("%1: %2, %3 ms, %4").arg(check.name, state).arg(check.ms).arg(check.detail));
    }
    return lines.join(u'\n');
}

Diagnosis::Diagnosis(Places places, QObject* parent)
    : QObject(parent)
    , m_places(std::move(places))
{
}

void Diagnosis::start()
{
    ++m_run;
    m_checks.clear();
    checkUrl(tr("Documents service"), m_places.documents);
    checkUrl(tr("Drive"), m_places.drive);
    checkCloudService();
    checkGateway();
    Q_EMIT changed();
}

bool Diagnosis::isRunning() const
{
    return std::any_of(m_checks.begin(), m_checks.end(), [](const DiagnosisCheck& each) {
        return each.state == DiagnosisCheck::State::Running;
    });
}

int Diagnosis::begin(const QString& name)
{
    m_checks.append({name, DiagnosisCheck::State::Running, {}, 0});
    return m_checks.size() - 1;
}

void Diagnosis::checkUrl(const QString& name, const QUrl& url)
{
    const int check = begin(name);
    if (!url.isValid() || url.host().isEmpty()) {
        end(m_run, check, false, tr("no address is configured"), 0);
        return;
    }
    auto* access = new nrt::NNetworkAccessManager(this);
    QNetworkRequest request(url);
    request.setTransferTimeout(longestCheckMs);
    QNetworkReply* reply = access->get(request);
    const auto ended = [this, run = m_run, check, reply, access, url, timer = started()] {
        const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        const QString address = url.toDisplayString();
        if (status > 0)
            end(run, check, status < serverErrors, tr("%1 answers with status %2").arg(address).arg(status),
                timer.elapsed());
        else
            end(run, check, false, tr("%1: %2").arg(address, reply->errorString()), timer.elapsed());
        access->deleteLater();
    };
    connect(reply, &QNetworkReply::finished, this, ended);
}

void Diagnosis::checkGateway()
{
    const int check = begin(tr("Request gateway"));
    auto* socket = new QTcpSocket(this);
    socket->setProxy(QNetworkProxy::NoProxy);
    const QString address = QStringLiteral("%1:%2").arg(m_places.gatewayHost).arg(m_places.gatewayPort);
    const auto ended = [this, run = m_run, check, socket, address, timer = started()](bool isGood) {
        socket->disconnect(this);
        socket->deleteLater();
        end(run, check, isGood,
            isGood ? tr("%1 takes connections").arg(address)
                   : tr("%1: %2").arg(address, socket->errorString()),
            timer.elapsed());
    };
    connect(socket, &QTcpSocket::connected, this, [ended] { ended(true); });
    connect(socket, &QAbstractSocket::errorOccurred, this, [ended] { ended(false); });
    socket->connectToHost(m_places.gatewayHost, static_cast<quint16>(m_places.gatewayPort));
}

void Diagnosis::checkCloudService()
{
    const int check = begin(tr("Cloud service"));
    const auto ended = [guarded = QPointer<Diagnosis>(this), run = m_run, check,
                        timer = started()](bool success) {
        if (guarded)
            guarded->end(run, check, success, success ? tr("it answers") : tr("it does not answer"),
                         timer.elapsed());
    };
    QTimer::singleShot(longestCheckMs, this, [ended] { ended(false); });
    if (m_places.askCloudService)
        m_places.askCloudService(ended);
    else
        ended(false);
}

void Diagnosis::end(int run, int check, bool isGood, const QString& detail, qint64 ms)
{
    if (run != m_run || m_checks.at(check).state != DiagnosisCheck::State::Running)
        return;
    m_checks[check].state = isGood ? DiagnosisCheck::State::Good : DiagnosisCheck::State::Bad;
    m_checks[check].detail = detail;
    m_checks[check].ms = ms;
    Q_EMIT changed();
}

} // namespace shell
