#include "offline/NReadDataSteamTask.h"

#include "offline/LinklessFiles.h"

#include <utility>

NReadDataSteamTask::NReadDataSteamTask(QString path)
    : m_path(std::move(path))
{
}

void NReadDataSteamTask::run()
{
    const nrt::files::Reading content = nlinklessfiles::readFile(m_path);
    m_ok = bool(content);
    m_data = content.bytes;
    Q_EMIT finished(m_ok, m_data);
}
