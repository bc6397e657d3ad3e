#pragma once

#include "shell/system/FileDescriptor.h"

#include <QObject>

#include <memory>

class QSocketNotifier;

namespace shell {

/** Turns SIGTERM, SIGINT and SIGHUP into a signal on the user-interface thread. One per process. */
class QuitSignals final : public QObject
{
    Q_OBJECT
public:
    explicit QuitSignals(QObject* parent = nullptr);
    ~QuitSignals() override;

Q_SIGNALS:
    void quitRequested();

private:
    void onReadable();

    FileDescriptor m_readEnd;
    FileDescriptor m_writeEnd;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace shell
