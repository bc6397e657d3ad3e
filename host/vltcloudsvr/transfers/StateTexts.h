#pragma once

#include "vltcloudsvr/transfers/Transfer.h"

/** The texts of states that are asked for again and again. */
namespace vlt::cloudsvr {

/** 0 to 100; 0 when the size is not known. */
int percentOf(qint64 done, qint64 size);

/** What an upload's state says of it. */
struct UploadStateFields
{
    TransferState state = TransferState::Queued;
    int percent = 0;
    QString task;
    QString code;
    QString detail;
    QString message;
};

/** "ok/task" and so on. No field but the last can hold a "/"; the last is URL-safe Base64. */
QString uploadStateText(const UploadStateFields& fields);

/** The text as a JSON text that holds neither "|" nor a line break. */
void appendJsonText(QString& target, const QString& text);

} // namespace vlt::cloudsvr
