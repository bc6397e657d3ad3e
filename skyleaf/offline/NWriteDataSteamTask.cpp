#include "offline/NWriteDataSteamTask.h"

#include "offline/LinklessFiles.h"

#include <utility>

NWriteDataSteamTask::NWriteDataSteamTask(QString path, QByteArray data, bool append)
    : m_path(std::move(path))
    , m_data(std::move(data))
    , m_append(append)
{
}

void NWriteDataSteamTask::run()
{
    m_ok =
        m_append ? nlinklessfiles::appendToFile(m_path, m_data) : nlinklessfiles::writeFile(m_path, m_data);
    Q_EMIT finished(m_ok);
}
