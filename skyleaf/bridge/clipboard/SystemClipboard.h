#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

class QMimeData;

/**
 * The system clipboard beneath Qt's MIME data, one implementation a platform. User-interface thread; every
 * read asks the program that owns the clipboard and waits for its answer.
 *
 * The script methods speak of formats by the names that the suite's programs share: "HTML Format" and
 * "Chromium Web Custom MIME Data Format". Where the system has other names or shapes for the same content,
 * they are translated here.
 */
namespace systemclipboard {

/** Makes a format known to the system under its name. */
void registerFormat(const QString& name);

/** The bytes that the clipboard has under a registered name; nothing when it cannot be read or has none. */
std::optional<QByteArray> read(const QString& name);

/** What is on the clipboard, valid until the event loop runs again; null for nothing. Its formats are those
 * of the system. */
const QMimeData* content();

/** The formats of `content`, in its order, by the shared names. */
QStringList formats(const QMimeData& content);
/** The bytes under a name that `formats` gave; empty when its owner has gone. */
QByteArray bytes(const QMimeData& content, const QString& format);

/** Replaces what is on the clipboard. */
void replace(std::unique_ptr<QMimeData> content);

} // namespace systemclipboard
