#include "nvltcloudmodule/SendFileOutbox.h"

#include "nrt/files.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>

namespace vltcloud {

namespace {

constexpr int lockWaitMs = 2000;

QString tr(const char* text)
{
    return QCoreApplication::translate("SendFileWindow", text);
}

QByteArray toLine(const Sender& sender, const OutgoingFile& outgoing)
{
    const QJsonObject record{{QStringLiteral("time"), outgoing.time.toUTC().toString(Qt::ISODateWithMs)},
                             {QStringLiteral("from"), sender.userId},
                             {QStringLiteral("to"), QJsonArray::fromStringList(outgoing.recipients)},
                             {QStringLiteral("fileId"), outgoing.file.fileId},
                             {QStringLiteral("fileName"), outgoing.file.fileName},
                             {QStringLiteral("link"), outgoing.file.link},
                             {QStringLiteral("message"), outgoing.message}};
    return QJsonDocument(record).toJson(QJsonDocument::Compact) + '\n';
}

bool endsInLine(QFile& file)
{
    if (file.size() == 0)
        return true;
    return file.seek(file.size() - 1) && file.read(1) == "\n";
}

} // namespace

QString putIntoOutbox(const Sender& sender, const OutgoingFile& outgoing)
{
    if (sender.userId.isEmpty())
        return tr("Sign in to send files.");
    if (sender.outboxDir.isEmpty() || !QDir().mkpath(sender.outboxDir))
        return tr("The outbox cannot be made.");
    const QString path = QDir(sender.outboxDir).filePath(QStringLiteral("sent-files.jsonl"));
    QLockFile lock(path + QStringLiteral(".lock"));
    if (!lock.tryLock(lockWaitMs))
        return tr("The outbox is in use. Try again.");
    QFile file;
    const QString failure = nrt::files::open(file, path, QIODevice::ReadWrite);
    if (!failure.isEmpty())
        return tr("The outbox cannot be written: %1").arg(failure);
    // What a full disk left of an earlier line stays a line of its own.
    const QByteArray line = (endsInLine(file) ? QByteArray() : QByteArray("\n")) + toLine(sender, outgoing);
    const qint64 end = file.size();
    if (file.seek(end) && file.write(line) == line.size() && file.flush())
        return {};
    const QString reason = file.errorString();
    file.resize(end);
    return tr("The outbox cannot be written: %1").arg(reason);
}

} // namespace vltcloud
