#include "zeolite/files/RotatingFile.h"

#include "nrt/files.h"

#include <QDir>
#include <QFileInfo>

#include <cstdio>

RotatingFile::RotatingFile(QString path, qint64 limit)
    : m_path(std::move(path))
    , m_limit(limit)
{
}

bool RotatingFile::append(const QByteArray& line)
{
    if (!m_file.isOpen() && !open())
        return false;
    if (m_file.size() > 0 && m_file.size() + line.size() > m_limit) {
        rotate();
        if (!open())
            return false;
    }
    const bool isWritten = m_file.write(line) == line.size();
    if (!isWritten)
        m_error = m_file.errorString();
    return isWritten;
}

bool RotatingFile::open()
{
    QDir().mkpath(QFileInfo(m_path).path());
    m_error =
        nrt::files::open(m_file, m_path, QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered);
    return m_error.isEmpty();
}

void RotatingFile::rotate()
{
    const QByteArray path = QFile::encodeName(m_path);
    const QByteArray older = path + ".1";
    if (std::rename(path.constData(), older.constData()) != 0)
        m_file.resize(0);
    m_file.close();
}
