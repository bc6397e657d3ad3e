#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <optional>
#include <utility>
#include <vector>
#include <zip.h>

/** Files and archives for the tests. */
namespace testfiles {

inline QString s(const char* text)
{
    return QString::fromUtf8(text);
}

inline void write(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
    file.write(bytes);
}

/** Nothing when there is no such file. */
inline std::optional<QByteArray> read(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

struct Entry
{
    const char* name;
    QByteArray bytes;
    quint32 mode = 0; //!< Unix mode bits; 0 for none
};

/** Makes a zip file of entries, whatever their names are. */
inline void writeZip(const QString& path, const std::vector<Entry>& entries)
{
    QDir().mkpath(QFileInfo(path).path());
    zip_t* archive = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    ASSERT_NE(archive, nullptr);
    for (const Entry& entry : entries) {
        const auto size = zip_uint64_t(entry.bytes.size());
        const zip_int64_t index =
            QByteArray(entry.name).endsWith('/')
                ? zip_dir_add(archive, entry.name, 0)
                : zip_file_add(archive, entry.name,
                               zip_source_buffer(archive, entry.bytes.constData(), size, 0), 0);
        ASSERT_GE(index, 0) << entry.name;
        if (entry.mode)
            zip_file_set_external_attributes(archive, zip_uint64_t(index), 0, ZIP_OPSYS_UNIX,
                                             entry.mode << 16U);
    }
    ASSERT_EQ(zip_close(archive), 0);
}

/** The relative paths of everything below a directory, hidden files too. */
inline QStringList tree(const QString& directory, const QString& prefix = {})
{
    QStringList paths;
    for (const QFileInfo& info : QDir(directory).entryInfoList(
             QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name)) {
        paths.append(prefix + info.fileName());
        if (info.isDir() && !info.isSymLink())
            paths += tree(info.filePath(), prefix + info.fileName() + QLatin1Char('/'));
    }
    return paths;
}

} // namespace testfiles
