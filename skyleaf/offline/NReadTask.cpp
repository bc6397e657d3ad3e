#include "offline/NReadTask.h"

#include <QFile>

#include <utility>

NReadTask::NReadTask(QString path)
    : m_path(std::move(path))
{
}

void NReadTask::run()
{
    QFile file(m_path);
    const bool ok = file.exists() && file.open(QIODevice::ReadOnly);
    Q_EMIT finished(ok, ok ? file.readAll() : QByteArray());
}
