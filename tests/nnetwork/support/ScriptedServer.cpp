#include "support/ScriptedServer.h"

#include <QSslSocket>

#include <memory>

ScriptedServer::ScriptedServer(Answer answer)
    : m_answer(std::move(answer))
{
    listen(QHostAddress::LocalHost);
}

QString ScriptedServer::address() const
{
    return QStringLiteral("127.0.0.1:%1").arg(serverPort());
}

void ScriptedServer::incomingConnection(qintptr handle)
{
    ++connections;
    auto* socket = new QSslSocket(this);
    socket->setSocketDescriptor(handle);
    const auto input = std::make_shared<QByteArray>();
    connect(socket, &QSslSocket::readyRead, this, [this, socket, input] { read(*socket, *input); });
    connect(socket, &QSslSocket::disconnected, this, [this] { ++disconnections; });
    if (m_tls.isNull())
        return;
    socket->setSslConfiguration(m_tls);
    socket->startServerEncryption();
}

void ScriptedServer::read(QTcpSocket& socket, QByteArray& input)
{
    input += socket.readAll();
    const int headEnd = input.indexOf("\r\n\r\n");
    if (headEnd < 0)
        return;
    ServerRequest request;
    QList<QByteArray> lines = input.left(headEnd).split('\n');
    const QList<QByteArray> words = lines.takeFirst().split(' ');
    request.method = words.value(0);
    request.target = words.value(1);
    for (const QByteArray& line : lines) {
        const int colon = line.indexOf(':');
        request.headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
    }
    const int length = request.headers.value("content-length").toInt();
    if (input.size() < headEnd + 4 + length)
        return;
    request.body = input.mid(headEnd + 4, length);
    input.remove(0, headEnd + 4 + length);
    requests.push_back(request);

    QByteArray answer = m_answer(request);
    const bool closes = answer.endsWith(closingMark);
    if (closes)
        answer.chop(static_cast<int>(sizeof closingMark) - 1);
    socket.write(answer);
    if (closes)
        socket.disconnectFromHost();
}

QByteArray httpAnswer(const QByteArray& status, const QByteArray& lines, const QByteArray& body)
{
    return "HTTP/1.1 " + status + "\r\n" + lines + "Content-Length: " + QByteArray::number(body.size()) +
           "\r\n\r\n" + body;
}
