#include "bridge/clipboard/CustomMimeFormat.h"

#include "bridge/clipboard/CompactJson.h"

#include <QTextCodec>
#include <QtEndian>

#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <vector>

namespace {

constexpr qint64 numberSize = sizeof(quint32);
constexpr qint64 unitSize = sizeof(char16_t);
/** Texts are encoded in pieces that stay in the processor's cache: no second copy of a large text is made. */
constexpr int unitsAtOnce = 16 * 1024;

struct Pair
{
    QString type;
    QString text;
};

qint64 padded(qint64 size)
{
    return (size + 3) / 4 * 4;
}

qint64 writtenSize(const QString& text)
{
    return numberSize + padded(text.size() * unitSize);
}

QString textOf(const QVariant& value)
{
    if (value.userType() != QMetaType::QVariantMap)
        return value.toString().trimmed();
    return compactJson(value.toMap()).trimmed();
}

std::vector<Pair> pairsOf(const QVariantMap& values)
{
    std::vector<Pair> pairs;
    pairs.reserve(std::size_t(values.size()));
    for (auto value = values.begin(); value != values.end(); ++value) {
        Pair pair{value.key().trimmed(), textOf(value.value())};
        if (!pair.type.isEmpty() && !pair.text.isEmpty())
            pairs.push_back(std::move(pair));
    }
    return pairs;
}

/** Fills a byte array whose size is known. */
class Writer
{
public:
    Writer(char* to, QTextEncoder& encoder)
        : m_to(to)
        , m_encoder(encoder)
    {
    }

    void number(qint64 value)
    {
        qToLittleEndian(quint32(value), m_to);
        m_to += numberSize;
    }

    void text(const QString& text)
    {
        number(text.size());
        for (int from = 0; from < text.size(); from += unitsAtOnce) {
            const QByteArray piece =
                m_encoder.fromUnicode(text.constData() + from, std::min(unitsAtOnce, text.size() - from));
            std::memcpy(m_to, piece.constData(), std::size_t(piece.size()));
            m_to += piece.size();
        }
        const qint64 size = text.size() * unitSize;
        std::memset(m_to, 0, std::size_t(padded(size) - size));
        m_to += padded(size) - size;
    }

private:
    char* m_to;
    QTextEncoder& m_encoder;
};

class Reader
{
public:
    explicit Reader(const QByteArray& bytes)
        : m_bytes(bytes)
        , m_at(std::min<qint64>(numberSize, bytes.size()))
    {
    }

    std::optional<quint32> number()
    {
        if (left() < numberSize)
            return {};
        const quint32 value = qFromLittleEndian<quint32>(m_bytes.constData() + m_at);
        m_at += numberSize;
        return value;
    }

    std::optional<QString> text()
    {
        const std::optional<quint32> units = number();
        if (!units)
            return {};
        const qint64 size = *units * unitSize;
        if (size > std::numeric_limits<qint32>::max() || size > left()) {
            m_at = m_bytes.size();
            return {};
        }
        QString text(int(*units), Qt::Uninitialized);
        qFromLittleEndian<quint16>(m_bytes.constData() + m_at, *units, text.data());
        m_at += std::min(padded(size), left()); // the last text may lack its padding
        return text;
    }

private:
    qint64 left() const { return m_bytes.size() - m_at; }

    const QByteArray& m_bytes;
    qint64 m_at;
};

} // namespace

namespace custommime {

const char* const formatName = "Chromium Web Custom MIME Data Format";

QByteArray build(const QVariantMap& values)
{
    QTextCodec* const codec = QTextCodec::codecForName("UTF-16");
    if (!codec)
        return {};
    const std::unique_ptr<QTextEncoder> encoder(codec->makeEncoder(QTextCodec::IgnoreHeader));
    if (!encoder)
        return {};

    const std::vector<Pair> pairs = pairsOf(values);
    qint64 payload = numberSize;
    for (const Pair& pair : pairs)
        payload += writtenSize(pair.type) + writtenSize(pair.text);
    constexpr qint64 longest = std::numeric_limits<int>::max() - 64; // a byte array's own header counts
    if (numberSize + payload > longest)
        throw std::bad_alloc();

    QByteArray bytes(int(numberSize + payload), Qt::Uninitialized);
    Writer out(bytes.data(), *encoder);
    out.number(payload);
    out.number(qint64(pairs.size()));
    for (const Pair& pair : pairs) {
        out.text(pair.type);
        out.text(pair.text);
    }
    return bytes;
}

std::optional<QVariantMap> parse(const QByteArray& bytes)
{
    Reader in(bytes);
    const std::optional<quint32> count = in.number();
    if (!count)
        return {};
    QVariantMap values;
    for (quint32 i = 0; i < *count; ++i) {
        const std::optional<QString> type = in.text();
        if (!type)
            return {};
        std::optional<QString> text = in.text();
        if (!text)
            return {};
        values.insert(*type, std::move(*text));
    }
    return values;
}

} // namespace custommime
