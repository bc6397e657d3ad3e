#include "vltcloudsvr/archive/CentralDirectory.h"

#include <QIODevice>
#include <QtEndian>

namespace vlt::cloudsvr {
namespace {

constexpr qint64 endRecordSize = 22;
constexpr qint64 longestComment = 0xffff;
constexpr qint64 locatorSize = 20;
constexpr qint64 zip64RecordSize = 56;
constexpr int headerSize = 46;

struct Place
{
    qint64 offset = 0;
    quint64 entries = 0;
};

template <typename Number>
Number numberAt(const QByteArray& bytes, int offset)
{
    return offset >= 0 && offset + int(sizeof(Number)) <= bytes.size()
               ? qFromLittleEndian<Number>(bytes.constData() + offset)
               : Number(0);
}

QByteArray readAt(QIODevice& file, qint64 offset, qint64 size)
{
    return offset >= 0 && file.seek(offset) ? file.read(size) : QByteArray();
}

/** The directory of a file with 64-bit fields, whose locator stands before the end record. */
Place zip64Place(QIODevice& file, qint64 locatorOffset)
{
    const QByteArray locator = readAt(file, locatorOffset, locatorSize);
    if (!locator.startsWith("PK\6\7"))
        return {};
    const QByteArray record = readAt(file, qint64(numberAt<quint64>(locator, 8)), zip64RecordSize);
    if (!record.startsWith("PK\6\6"))
        return {};
    return {qint64(numberAt<quint64>(record, 48)), numberAt<quint64>(record, 32)};
}

Place findDirectory(QIODevice& file)
{
    const qint64 tailSize = qMin(file.size(), endRecordSize + longestComment);
    const qint64 tailOffset = file.size() - tailSize;
    const QByteArray tail = readAt(file, tailOffset, tailSize);
    const int end = tail.lastIndexOf("PK\5\6");
    if (end < 0)
        return {};
    const Place place{qint64(numberAt<quint32>(tail, end + 16)), numberAt<quint16>(tail, end + 10)};
    const bool isZip64 = place.offset == 0xffffffff || place.entries == 0xffff;
    const Place large = isZip64 ? zip64Place(file, tailOffset + end - locatorSize) : Place();
    return large.entries > 0 ? large : place;
}

} // namespace

Result<QVector<QByteArray>> storedNames(QIODevice& zip)
{
    const Place place = findDirectory(zip);
    QVector<QByteArray> names;
    qint64 offset = place.offset;
    for (quint64 i = 0; i < place.entries; ++i) {
        const QByteArray header = readAt(zip, offset, headerSize);
        const qint64 nameSize = numberAt<quint16>(header, 28);
        const QByteArray name = readAt(zip, offset + headerSize, nameSize);
        if (!header.startsWith("PK\1\2") || name.size() != nameSize)
            return Error{QStringLiteral("the archive's directory is damaged")};
        names.append(name);
        offset += headerSize + nameSize + numberAt<quint16>(header, 30) + numberAt<quint16>(header, 32);
    }
    return names;
}

} // namespace vlt::cloudsvr
