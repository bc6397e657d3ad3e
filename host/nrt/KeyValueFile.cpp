#include "nrt/KeyValueFile.h"

#include <algorithm>

#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>

#include "nrt/FileLock.h"
#include "nrt/files.h"

namespace nrt {
namespace {

Q_LOGGING_CATEGORY(lcKcc, "nrt.kcc")

constexpr int lockTimeoutMs = 5000;
constexpr int checksumSize = 32;
constexpr qint64 largestStore = 64LL << 20; //!< bytes

QByteArray fileMark()
{
    return QByteArrayLiteral("NKCC1\n");
}

QByteArray checksum(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
}

/** As it stands in a whole file's bytes. */
QByteArray checksumOf(const QByteArray& bytes)
{
    return bytes.mid(fileMark().size(), checksumSize);
}

bool setAside(const QString& path, const QString& reason)
{
    const QString aside = files::setAside(path);
    qCWarning(lcKcc, "key-value store %s is damaged (%s); %s %s", qUtf8Printable(path),
              qUtf8Printable(reason), aside.isEmpty() ? "it could not be set aside" : "set aside as",
              qUtf8Printable(aside));
    return !aside.isEmpty();
}

template <typename Container>
bool allStorable(const Container& values)
{
    return std::all_of(values.begin(), values.end(), isStorable);
}

void apply(const QVariantMap& changes, QVariantMap& values)
{
    for (auto change = changes.begin(); change != changes.end(); ++change) {
        if (change.value().isValid())
            values.insert(change.key(), change.value());
        else
            values.remove(change.key());
    }
}

} // namespace

bool isStorable(const QVariant& value)
{
    switch (static_cast<QMetaType::Type>(value.userType())) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::QString:
    case QMetaType::QStringList:
    case QMetaType::QByteArray:
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime:
    case QMetaType::QUrl:
    case QMetaType::QJsonValue:
    case QMetaType::QJsonObject:
    case QMetaType::QJsonArray:
        return true;
    case QMetaType::QVariantList:
        return allStorable(value.toList());
    case QMetaType::QVariantMap:
        return allStorable(value.toMap());
    case QMetaType::QVariantHash:
        return allStorable(value.toHash());
    default:
        return false;
    }
}

QByteArray encodeKeyValues(const QVariantMap& values)
{
    QByteArray payload;
    QDataStream stream(&payload, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_15);
    stream << values;
    return fileMark() + checksum(payload) + payload;
}

std::optional<QVariantMap> decodeKeyValues(const QByteArray& bytes)
{
    const QByteArray mark = fileMark();
    const QByteArray payload = bytes.mid(mark.size() + checksumSize);
    if (!bytes.startsWith(mark) || bytes.mid(mark.size(), checksumSize) != checksum(payload))
        return std::nullopt;
    QDataStream stream(payload);
    stream.setVersion(QDataStream::Qt_5_15);
    QVariantMap values;
    stream >> values;
    if (stream.status() != QDataStream::Ok)
        return std::nullopt;
    return values;
}

KeyValueFile::KeyValueFile(QString path)
    : m_path(std::move(path))
{
    refresh();
}

QVariant KeyValueFile::value(const QString& key) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto memoryOnly = m_memoryOnly.find(key);
    return memoryOnly != m_memoryOnly.end() ? *memoryOnly : m_values.value(key);
}

void KeyValueFile::refresh()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    mergeFile();
}

bool KeyValueFile::setValue(const QString& key, const QVariant& value)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!isStorable(value)) {
        qCWarning(lcKcc, "value of key %s has the type %s, which cannot be stored", qUtf8Printable(key),
                  value.typeName());
        m_memoryOnly.insert(key, value);
        return false;
    }
    m_memoryOnly.remove(key);
    m_pending.insert(key, value);
    apply(m_pending, m_values);
    return writeMerged();
}

/**
 * Takes the file's values, with the pending changes on top. The file is only ever replaced whole, so no lock
 * is needed. False when there is a file that cannot be read: writing would lose what it holds.
 */
bool KeyValueFile::mergeFile()
{
    const FileIdentity present = FileIdentity::of(m_path);
    if (present.isKnown() && present == m_seen)
        return true;
    const files::Reading file = files::read(m_path, largestStore);
    if (file.fault == files::Fault::Missing)
        return true;
    if (file.fault == files::Fault::Unreadable) {
        qCWarning(lcKcc, "key-value store %s cannot be read: %s", qUtf8Printable(m_path),
                  qUtf8Printable(file.reason));
        return false;
    }
    if (auto stored = file ? decodeKeyValues(file.bytes) : std::nullopt) {
        m_values = *std::move(stored);
        m_seen = present;
        m_seenSum = checksumOf(file.bytes);
    } else {
        if (!setAside(m_path, file ? QStringLiteral("its checksum is wrong") : file.reason))
            return false;
        m_seen = {};
        m_seenSum.clear();
    }
    apply(m_pending, m_values);
    return true;
}

bool KeyValueFile::writeMerged()
{
    QDir().mkpath(QFileInfo(m_path).path());
    const FileLock lock(m_path + QStringLiteral(".lock"), lockTimeoutMs);
    if (!lock.isLocked()) {
        qCWarning(lcKcc, "key-value store %s cannot be locked; the value stays in memory",
                  qUtf8Printable(m_path));
        return false;
    }
    if (!mergeFile())
        return false;
    const QByteArray bytes = encodeKeyValues(m_values);
    if (bytes.size() > largestStore) {
        qCWarning(lcKcc, "key-value store %s would be too large; the value stays in memory",
                  qUtf8Printable(m_path));
        return false;
    }
    if (checksumOf(bytes) != m_seenSum ||
        !QFile::exists(m_path)) { // a value written again as it is costs no disk write
        const QString failure = files::replace(m_path, bytes);
        if (!failure.isEmpty()) {
            qCWarning(lcKcc, "key-value store %s not written: %s", qUtf8Printable(m_path),
                      qUtf8Printable(failure));
            return false;
        }
        m_seen = FileIdentity::of(m_path);
        m_seenSum = checksumOf(bytes);
    }
    m_pending.clear();
    return true;
}

} // namespace nrt
