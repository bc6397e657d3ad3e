#include "shell/system/HandOverServer.h"

#include <QLocalSocket>
#include <QTimer>

#include <chrono>

namespace shell {

HandOverServer::HandOverServer(QObject* parent)
    : QObject(parent)
{
    connect(&m_server, &QLocalServer::newConnection, this, &HandOverServer::greet);
}

bool HandOverServer::listen(int descriptor)
{
    return m_server.listen(static_cast<qintptr>(descriptor));
}

void HandOverServer::greet()
{
    QLocalSocket* start = m_server.nextPendingConnection();
    if (!start)
        return;
    start->setReadBufferSize(HandOver::longest);
    connect(start, &QLocalSocket::disconnected, start, &QObject::deleteLater);
    QTimer::singleShot(OneInstance::answerLimit, start, [start] { start->abort(); });
    connect(start, &QLocalSocket::readyRead, this, [this, start] {
        if (!start->canReadLine()) {
            if (start->bytesAvailable() >= HandOver::longest)
                start->abort();
            return;
        }
        const auto wish = HandOver::fromMessage(start->readLine());
        if (!wish)
            return start->abort();
        Q_EMIT handedOver(*wish);
        start->write("+");
        start->disconnectFromServer();
    });
}

} // namespace shell
