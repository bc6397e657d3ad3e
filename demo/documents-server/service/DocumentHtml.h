#pragma once

#include <QJsonObject>
#include <QString>

namespace documents {

/**
 * A document's content as an HTML fragment that shows without any script: text documents (a "doc" node with
 * paragraphs, headings, lists, marks …) and tables ("sheets"). All text is escaped, addresses of links and
 * images are kept only when they cannot run script, nodes that are not known show what they contain. Content
 * of neither kind gives an empty text.
 */
QString contentToHtml(const QJsonObject& content);

} // namespace documents
