#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QVariant>

#include <functional>

/**
 * The text of what is injected into a page; without state, any thread. Scripts are UTF-8 and come in pieces,
 * so that a large value is copied into the page once.
 */
namespace ninjectscript {

/** The values that a script can carry. */
enum class Value { FileInfo, OfflineSwitch, Content, Cache, SsrContent, SsrContentTimes, ConnId };

/** Answers a value as the script writes it, asked only for what is needed; empty is written as null. */
using ValueOf = std::function<QByteArray(Value)>;

/**
 * The script that sets the values. `list` names them, in its order; a null one stands for all of them, and
 * an empty one gives no script.
 */
QByteArrayList script(const QVariant& list, const ValueOf& valueOf);

/** The page with the script at its markers. */
QByteArray pageWithScript(const QByteArray& html, const QByteArrayList& script);

/** With every "</" as "<\/". */
QByteArray closingTagsEscaped(QByteArray bytes);
/**
 * A script expression that can neither end nor swallow the script element that it is written into, and has
 * the same value: in its texts "</", "<!--", "<script" and the line separators of Unicode are escaped.
 */
QByteArray escapedForScript(const QByteArray& expression);
/**
 * Whether the bytes stay one value wherever they are written in a script: JSON text, or another expression
 * whose texts are closed and whose brackets fit, without comments, templates, divisions and statements.
 */
bool isWholeExpression(const QByteArray& bytes);
/** The page that the server rendered, as the JSON text of an object. */
QByteArray csrJson(const QByteArray& csrHtml);
/** Bytes that came from elsewhere as the UTF-8 of a text: what is no UTF-8 is replaced. */
QByteArray validUtf8(const QByteArray& bytes);

} // namespace ninjectscript
