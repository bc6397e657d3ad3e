#include "offline/NReadTask.h"

#include "offline/LinklessFiles.h"

#include <QFileInfo>

NReadTask::NReadTask(QString path)
    : m_path(std::move(path))
{
}

void NReadTask::run()
{
    const nrt::files::Reading content = nlinklessfiles::readFile(m_path);
    m_ok = bool(content);
    m_data = content.bytes;
    Q_EMIT finished(m_ok, m_data);
}
