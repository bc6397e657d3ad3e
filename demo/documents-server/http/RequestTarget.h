#pragma once

#include <optional>

#include <QByteArray>
#include <QStringList>
#include <QUrlQuery>

namespace documents {

/** A request target taken apart. */
struct RequestTarget
{
    QStringList segments; ///< decoded, between the slashes; one slash at the end adds none; "/" has none
    QUrlQuery query;

    /** The decoded value of the query's first item of that name; empty when there is none. */
    QString queryValue(const QString& name) const;
};

/**
 * Reads a target in origin form ("/path?query") or absolute form ("http://host/path?query"). Nothing when it
 * is neither, when an escape is broken, or when the decoded path is not UTF-8 or holds a control character.
 */
std::optional<RequestTarget> parseRequestTarget(const QByteArray& target);

} // namespace documents
