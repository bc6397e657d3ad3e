#include "offline/NRemoveTask.h"

#include "offline/LinklessFiles.h"

#include <utility>

NRemoveTask::NRemoveTask(QString path, bool isFolder)
    : m_path(std::move(path))
    , m_isFolder(isFolder)
{
}

void NRemoveTask::run()
{
    m_ok = m_isFolder ? nlinklessfiles::removeFolder(m_path) : nlinklessfiles::removeFile(m_path);
    Q_EMIT finished(m_ok);
}
