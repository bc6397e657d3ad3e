#pragma once

#include <QByteArray>

#include <optional>

/**
 * CF_HTML, what other systems have under "HTML Format": an ASCII header with four byte offsets, then a
 * document in UTF-8 whose interesting part, the fragment, stands between two comments.
 */
namespace htmlformat {

/** The name under which the format lies on the clipboard. */
extern const char* const formatName;

/** `fragment`, UTF-8, inside a document behind its header. Raises std::bad_alloc when memory runs out. */
QByteArray build(const QByteArray& fragment);

/** The document behind the header; nothing when the bytes have no such header or its offsets lie outside. */
std::optional<QByteArray> document(const QByteArray& bytes);

/**
 * Office programs wrap a document of their own namespace: that document, when one starts after the first byte
 * and is closed; else the bytes as they are.
 */
QByteArray cutOfficeDocument(const QByteArray& bytes);

} // namespace htmlformat
