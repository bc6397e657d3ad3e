#include "offline/NReadDataSteamTask.h"

#include "offline/LinklessFiles.h"

#include <utility>

NReadDataSteamTask::NReadDataSteamTask(QString path)
    : m_path(std::move(path))
{
}

void NReadDataSteamTask::run()
{
    const std::optional<QByteArray> content = nlinklessfiles::readFile(m_path);
    m_ok = content.has_value();
    m_data = content.value_or(QByteArray());
    Q_EMIT finished(m_ok, m_data);
}
