#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/**
 * A file that grows line by line; each line is handed to the system at once. When it would exceed its limit,
 * it is renamed to "<path>.1", which replaces an older one, and begun anew; where it cannot be renamed, it is
 * emptied. What is no regular file is not written to. One thread at a time.
 */
class RotatingFile
{
public:
    static constexpr qint64 defaultLimit = 10LL * 1024 * 1024;

    explicit RotatingFile(QString path, qint64 limit = defaultLimit);

    /** `line` includes its line end. False when it could not be written whole; the next call tries to open
     * again. */
    bool append(const QByteArray& line);
    QString errorString() const { return m_error; }

private:
    bool open();
    void rotate();

    const QString m_path;
    QFile m_file;
    const qint64 m_limit;
    QString m_error;
};
