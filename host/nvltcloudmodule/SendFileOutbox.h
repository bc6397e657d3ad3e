#pragma once

#include "nvltcloudmodule/SendFileRequest.h"

#include <QDateTime>

namespace vltcloud {

/** Who sends, and where what they send waits. */
struct Sender
{
    QString userId;    //!< empty: nobody is signed in
    QString outboxDir; //!< absolute; empty: there is none
};

/** What the user sends. */
struct OutgoingFile
{
    SendFileRequest file;
    QStringList recipients;
    QString message;
    QDateTime time;
};

/**
 * Appends the file as a line of JSON to "sent-files.jsonl" in the sender's outbox: {"time", "from", "to",
 * "fileId", "fileName", "link", "message"}. Empty, or why it was not written: for people. Several processes
 * can append at the same time.
 */
QString putIntoOutbox(const Sender& sender, const OutgoingFile& outgoing);

} // namespace vltcloud
