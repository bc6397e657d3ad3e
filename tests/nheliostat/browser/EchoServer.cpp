#include "EchoServer.h"

#include <QTcpSocket>

EchoServer::EchoServer()
{
    connect(this, &QTcpServer::newConnection, this, &EchoServer::serve);
    if (!listen(QHostAddress::LocalHost))
        qFatal("no loopback port");
}

void EchoServer::serve()
{
    QTcpSocket* const socket = nextPendingConnection();
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { answer(socket); });
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
}

void EchoServer::answer(QTcpSocket* socket)
{
    const QByteArray head = socket->peek(65536);
    if (!head.contains("\r\n\r\n"))
        return;
    socket->readAll();
    const QByteArray path = head.split(' ').value(1);
    requestLines << QString::fromLatin1(head.left(head.indexOf("\r\n")));
    const QByteArray type = path.endsWith(".bin") ? "application/octet-stream" : "text/plain";
    const QByteArray status = path.startsWith("/missing") ? "404 Not Found" : "200 OK";
    socket->write("HTTP/1.1 " + status + "\r\nContent-Type: " + type +
                  "\r\nAccess-Control-Allow-Origin: *\r\nConnection: close\r\nContent-Length: " +
                  QByteArray::number(head.size()) + "\r\n\r\n" + head);
    socket->disconnectFromHost();
}
