#include "support/HttpStub.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTcpSocket>
#include <QThread>

HttpStub::HttpStub()
{
    m_server.listen(QHostAddress::LocalHost);
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = m_server.nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
            connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
                m_received.remove(socket);
                socket->deleteLater();
            });
        }
    });
}

QString HttpStub::origin() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(m_server.serverPort());
}

void HttpStub::read(QTcpSocket* socket)
{
    QByteArray& received = m_received[socket];
    received += socket->readAll();
    for (int end = received.indexOf("\r\n\r\n"); end >= 0; end = received.indexOf("\r\n\r\n")) {
        const QList<QByteArray> lines = received.left(end).split('\n');
        const QList<QByteArray> start = lines.first().split(' ');
        Request request;
        request.method = start.value(0);
        request.target = start.value(1);
        for (const QByteArray& line : lines.mid(1)) {
            const int colon = line.indexOf(':');
            request.headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
        }
        const int length = request.headers.value("content-length").toInt();
        if (received.size() < end + 4 + length)
            return;
        request.body = received.mid(end + 4, length);
        received.remove(0, end + 4 + length);
        m_requests << request;
        reply(socket, request);
    }
}

void HttpStub::reply(QTcpSocket* socket, const Request& request)
{
    Answer answer;
    answer.status = 404;
    for (auto entry = m_answers.begin(); entry != m_answers.end(); ++entry) {
        if (request.target.startsWith(entry.key()))
            answer = entry.value(); // keys ascend: a longer beginning comes later
    }
    if (answer.silent)
        return;
    QByteArray text = "HTTP/1.1 " + QByteArray::number(answer.status) +
                      " -\r\nContent-Length: " + QByteArray::number(answer.body.size()) + "\r\n";
    for (const auto& header : qAsConst(answer.headers))
        text += header.first + ": " + header.second + "\r\n";
    socket->write(text + "\r\n" + (answer.cutAfter < 0 ? answer.body : answer.body.left(answer.cutAfter)));
    if (answer.cutAfter >= 0)
        socket->disconnectFromHost();
}

HttpStub::Request HttpStub::last(const QByteArray& targetPrefix) const
{
    for (auto request = m_requests.rbegin(); request != m_requests.rend(); ++request) {
        if (request->target.startsWith(targetPrefix))
            return *request;
    }
    return {};
}

int HttpStub::count(const QByteArray& targetPrefix) const
{
    int found = 0;
    for (const Request& request : m_requests)
        found += request.target.startsWith(targetPrefix) ? 1 : 0;
    return found;
}

bool waitUntil(const std::function<bool()>& condition)
{
    constexpr int longestMs = 5000;
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > longestMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(1);
    }
    return true;
}
