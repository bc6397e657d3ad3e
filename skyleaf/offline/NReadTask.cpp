#include "offline/NReadTask.h"

#include "offline/LinklessFiles.h"

#include <QFileInfo>

NReadTask::NReadTask(const QString& path)
    : m_path(QFileInfo(path).canonicalFilePath())
{
}

void NReadTask::run()
{
    const std::optional<QByteArray> content = nlinklessfiles::readFile(m_path);
    m_ok = content.has_value();
    m_data = content.value_or(QByteArray());
    Q_EMIT finished(m_ok, m_data);
}
