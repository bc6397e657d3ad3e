#pragma once

#include <QTcpServer>

/** An HTTP server on a loopback port whose answer to a request is the request's head, as text. */
class EchoServer final : public QTcpServer
{
    Q_OBJECT
public:
    EchoServer();
    /** The first lines of the requests, in order. */
    QStringList requestLines;

private:
    void serve();
    void answer(class QTcpSocket* socket);
};
