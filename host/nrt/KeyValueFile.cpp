#include "nrt/KeyValueFile.h"

#include <algorithm>

#include <QCryptographicHash>
#include <QDataStream>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QTimeZone>

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

constexpr int deepestValue = 100; //!< containers in each other

bool isPlain(int type)
{
    switch (static_cast<QMetaType::Type>(type)) {
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
    case QMetaType::QByteArray:
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime:
    case QMetaType::QUrl:
    case QMetaType::QJsonValue:
    case QMetaType::QJsonObject:
    case QMetaType::QJsonArray:
        return true;
    default:
        return false;
    }
}

bool isStorableAt(const QVariant& value, int depth);

template <typename Container>
bool allStorable(const Container& values, int depth)
{
    return depth <= deepestValue && std::all_of(values.begin(), values.end(), [depth](const QVariant& value) {
               return isStorableAt(value, depth);
           });
}

bool isStorableAt(const QVariant& value, int depth)
{
    switch (static_cast<QMetaType::Type>(value.userType())) {
    case QMetaType::QStringList:
        return true;
    case QMetaType::QVariantList:
        return allStorable(value.toList(), depth + 1);
    case QMetaType::QVariantMap:
        return allStorable(value.toMap(), depth + 1);
    case QMetaType::QVariantHash:
        return allStorable(value.toHash(), depth + 1);
    default:
        return isPlain(value.userType());
    }
}

/**
 * Reads what QDataStream writes for storable values, and nothing else: as it reads, a file could ask for
 * memory that it has no content for, and for any type that the program knows.
 */
class ValueReader
{
public:
    explicit ValueReader(const QByteArray& bytes)
        : m_stream(bytes)
    {
        m_stream.setVersion(QDataStream::Qt_5_15);
    }

    QVariantMap readMap(int depth = 0) { return readNamed<QVariantMap>(depth); }
    bool isWhole() const { return m_stream.status() == QDataStream::Ok; }

private:
    QVariant readValue(int depth)
    {
        quint32 type = 0;
        qint8 isNull = 0;
        m_stream >> type >> isNull;
        if (depth > deepestValue)
            return fail();
        switch (static_cast<QMetaType::Type>(type)) {
        case QMetaType::QStringList:
            return readList<QStringList>([this] { return readText(); });
        case QMetaType::QVariantList:
            return readList<QVariantList>([this, depth] { return readValue(depth + 1); });
        case QMetaType::QVariantMap:
            return readMap(depth + 1);
        case QMetaType::QVariantHash:
            return readNamed<QVariantHash>(depth + 1);
        case QMetaType::UnknownType:
            return {};
        default:
            break;
        }
        if (!isPlain(int(type)))
            return fail();
        const QVariant null(int(type), nullptr);
        QVariant value = null;
        if (!QMetaType::load(m_stream, int(type), value.data()) || !isWritable(value))
            return fail();
        return isNull != 0 ? null : QVariant(int(type), value.constData());
    }

    /** A time in a zone that is none ends the program when it is written again. */
    static bool isWritable(const QVariant& value)
    {
        if (value.userType() != QMetaType::QDateTime)
            return true;
        const QDateTime time = value.toDateTime();
        return time.timeSpec() != Qt::TimeZone || time.timeZone().isValid();
    }

    /** How many elements follow, each of which takes some bytes. */
    int readCount()
    {
        quint32 count = 0;
        m_stream >> count;
        if (count <= m_stream.device()->bytesAvailable() / 4)
            return int(count);
        fail();
        return 0;
    }

    template <typename Container, typename Read>
    Container readList(Read read)
    {
        Container values;
        for (int left = readCount(); left > 0 && isWhole(); --left)
            values.append(read());
        return values;
    }

    template <typename Container>
    Container readNamed(int depth)
    {
        Container values;
        for (int left = readCount(); left > 0 && isWhole(); --left) {
            const QString name = readText();
            values.insert(name, readValue(depth));
        }
        return values;
    }

    QString readText()
    {
        QString text;
        m_stream >> text;
        return text;
    }

    QVariant fail()
    {
        m_stream.setStatus(QDataStream::ReadCorruptData);
        return {};
    }

    QDataStream m_stream;
};

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
    return isStorableAt(value, 0);
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
    ValueReader reader(payload);
    QVariantMap values = reader.readMap();
    return reader.isWhole() ? std::optional(std::move(values)) : std::nullopt;
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
