#include "vltcloudsvr/archive/ZipExtractor.h"

#include "vltcloudsvr/archive/CentralDirectory.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <array>
#include <memory>
#include <zip.h>

namespace vlt::cloudsvr {
namespace {

struct Discard
{
    void operator()(zip_t* archive) const { zip_discard(archive); }
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};
using Archive = std::unique_ptr<zip_t, Discard>;
using EntryReader = std::unique_ptr<zip_file_t, Discard>;

QString openError(int code)
{
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    const QString text = QString::fromUtf8(zip_error_strerror(&error));
    zip_error_fini(&error);
    return text;
}

/** One extraction: the checks, then the writing. */
class Extraction
{
public:
    Extraction(zip_t* archive, QString directory, const ArchiveLimits& limits,
               const std::atomic<bool>& isCancelled)
        : m_archive(archive)
        , m_directory(std::move(directory))
        , m_limits(limits)
        , m_isCancelled(isCancelled)
    {
    }

    QString check(const QVector<QByteArray>& stored)
    {
        const zip_int64_t count = zip_get_num_entries(m_archive, 0);
        if (count > m_limits.entries)
            return QStringLiteral("the archive has too many entries (%1)").arg(count);
        if (count != stored.size())
            return QStringLiteral("the archive's directory is damaged");
        QSet<QByteArray> seen;
        quint64 total = 0;
        for (int i = 0; i < count; ++i) {
            zip_stat_t info;
            if (zip_stat_index(m_archive, quint64(i), 0, &info) != 0)
                return lastError();
            const QByteArray name(info.name);
            QString refusal = refusalOf(stored.at(i), modeOf(i));
            if (refusal.isEmpty())
                refusal = refusalOf(name, 0); // what is written is the name in UTF-8
            if (!refusal.isEmpty())
                return refusal;
            if (seen.contains(name))
                return QStringLiteral("the entry \"%1\" is there twice").arg(QString::fromUtf8(name));
            seen.insert(name);
            total += info.size;
            if (info.size > quint64(m_limits.totalBytes) || total > quint64(m_limits.totalBytes))
                return tooLarge();
            m_names.append(name);
        }
        return {};
    }

    QString writeAll()
    {
        if (!QDir().mkpath(m_directory))
            return QStringLiteral("cannot make %1").arg(m_directory);
        for (int i = 0; i < m_names.size(); ++i) {
            const QString error = write(i);
            if (!error.isEmpty())
                return error;
        }
        return {};
    }

private:
    QString lastError() const { return QString::fromUtf8(zip_strerror(m_archive)); }
    static QString tooLarge() { return QStringLiteral("the archive's files are too large"); }

    quint32 modeOf(int index) const
    {
        zip_uint8_t system = 0;
        zip_uint32_t attributes = 0;
        zip_file_get_external_attributes(m_archive, quint64(index), 0, &system, &attributes);
        return attributes >> 16U;
    }

    QString write(int index)
    {
        const QString path = m_directory + u'/' + QString::fromUtf8(m_names.at(index));
        const QString cannot = QStringLiteral("cannot write %1").arg(path);
        if (path.endsWith(u'/'))
            return QDir().mkpath(path) ? QString() : cannot;
        QFile file(path);
        if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::NewOnly | QIODevice::WriteOnly))
            return cannot;
        const EntryReader entry(zip_fopen_index(m_archive, quint64(index), 0));
        if (!entry)
            return lastError();
        std::array<char, 64 * 1024> buffer;
        while (!m_isCancelled) {
            const zip_int64_t size = zip_fread(entry.get(), buffer.data(), buffer.size());
            if (size < 0)
                return QString::fromUtf8(zip_error_strerror(zip_file_get_error(entry.get())));
            if (size == 0)
                return file.flush() ? QString() : cannot;
            m_written += size;
            if (m_written > m_limits.totalBytes) // the sizes that the directory tells may be lies
                return tooLarge();
            if (file.write(buffer.data(), size) != size)
                return cannot;
        }
        return QStringLiteral("the service ends");
    }

    zip_t* m_archive;
    const QString m_directory;
    const ArchiveLimits m_limits;
    const std::atomic<bool>& m_isCancelled;
    QVector<QByteArray> m_names;
    qint64 m_written = 0;
};

} // namespace

QString extractZip(const QString& zipFile, const QString& directory, const ArchiveLimits& limits,
                   const std::atomic<bool>& isCancelled)
{
    int code = 0;
    const Archive archive(
        zip_open(QFile::encodeName(zipFile).constData(), ZIP_RDONLY | ZIP_CHECKCONS, &code));
    if (!archive)
        return openError(code);
    QFile raw(zipFile);
    if (!raw.open(QIODevice::ReadOnly))
        return raw.errorString();
    const Result<QVector<QByteArray>> stored = storedNames(raw);
    if (!stored)
        return stored.error().text;

    Extraction extraction(archive.get(), directory, limits, isCancelled);
    QString error = extraction.check(*stored);
    if (!error.isEmpty())
        return error;
    if (QFileInfo::exists(directory))
        return QStringLiteral("%1 exists").arg(directory);
    error = extraction.writeAll();
    if (!error.isEmpty())
        QDir(directory).removeRecursively();
    return error;
}

} // namespace vlt::cloudsvr
