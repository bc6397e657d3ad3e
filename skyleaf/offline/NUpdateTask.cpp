#include "offline/NUpdateTask.h"

#include "offline/LinklessFiles.h"

#include <utility>

NUpdateTask::NUpdateTask(QString path, QString data, bool append, bool base64)
    : m_path(std::move(path))
    , m_data(std::move(data))
    , m_append(append)
    , m_base64(base64)
{
}

void NUpdateTask::run()
{
    const QByteArray bytes = QByteArray::fromBase64(m_data.toLatin1());
    if (!m_base64) {
        m_ok =
            m_append ? nlinklessfiles::appendToFile(m_path, bytes) : nlinklessfiles::writeFile(m_path, bytes);
    } else if (!m_append) {
        m_ok = nlinklessfiles::writeFile(m_path, bytes.toBase64());
    } else {
        m_ok = nlinklessfiles::changeFile(m_path, [&bytes](const QByteArray& old) {
            return QByteArray(QByteArray::fromBase64(old) + bytes).toBase64();
        });
    }
    Q_EMIT finished(m_ok);
}
