#pragma once

#include "shell/system/OneInstance.h"

#include <QLocalServer>
#include <QObject>

namespace shell {

/** Takes what later starts on the data directory hand over. User-interface thread. */
class HandOverServer final : public QObject
{
    Q_OBJECT
public:
    explicit HandOverServer(QObject* parent = nullptr);

    /** Listens on a socket of OneInstance::listen, which it owns from then on. False when that fails. */
    bool listen(int descriptor);

Q_SIGNALS:
    /** The start that handed it over hears that it was taken once the receivers are back. */
    void handedOver(const shell::HandOver& wish);

private:
    void greet();

    QLocalServer m_server;
};

} // namespace shell
