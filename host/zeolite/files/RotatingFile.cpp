#include "zeolite/files/RotatingFile.h"

#include <QDir>
#include <QFileInfo>

RotatingFile::RotatingFile(const QString& path, qint64 limit)
    : m_file(path)
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
    return m_file.write(line) == line.size();
}

bool RotatingFile::open()
{
    QDir().mkpath(QFileInfo(m_file.fileName()).path());
    return m_file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered);
}

void RotatingFile::rotate()
{
    m_file.close();
    const QString older = m_file.fileName() + QStringLiteral(".1");
    QFile::remove(older);
    QFile::rename(m_file.fileName(), older);
}
