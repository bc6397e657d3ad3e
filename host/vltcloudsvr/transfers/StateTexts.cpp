#include "vltcloudsvr/transfers/StateTexts.h"

#include <algorithm>

namespace vlt::cloudsvr {
namespace {

constexpr int whole = 100;

QString withoutSlash(QString field)
{
    return field.replace(u'/', u'.');
}

} // namespace

int percentOf(qint64 done, qint64 size)
{
    return size > 0 ? int(std::clamp<double>(double(done) / double(size) * whole, 0, whole)) : 0;
}

QString uploadStateText(const UploadStateFields& fields)
{
    switch (fields.state) {
    case TransferState::Finished:
        return QStringLiteral("ok/") + fields.task;
    case TransferState::Failed:
        return QStringLiteral("fail/0/") + withoutSlash(fields.code) + u'/' + fields.task + u'/' +
               withoutSlash(fields.detail) + u'/' +
               QString::fromLatin1(fields.message.toUtf8().toBase64(QByteArray::Base64UrlEncoding));
    case TransferState::Stopped:
        return QStringLiteral("stop/") + fields.task;
    case TransferState::Running:
        return QStringLiteral("uploading/") + QString::number(fields.percent) + u'/' + fields.task;
    case TransferState::Queued:
    case TransferState::Waiting:
        break;
    }
    return QStringLiteral("queue/0/") + fields.task;
}

void appendJsonText(QString& target, const QString& text)
{
    constexpr ushort firstPlain = 0x20;
    constexpr int hexWidth = 4;
    constexpr int hexBase = 16;
    target += u'"';
    for (const QChar character : text) {
        const ushort code = character.unicode();
        // U+2028 and U+2029 end a line in a script.
        if (code < firstPlain || code == u'|' || code == 0x2028 || code == 0x2029) {
            target += QStringLiteral("\\u%1").arg(code, hexWidth, hexBase, QLatin1Char('0'));
        } else {
            if (code == u'"' || code == u'\\')
                target += u'\\';
            target += character;
        }
    }
    target += u'"';
}

} // namespace vlt::cloudsvr
