#pragma once

#include <utility>
#include <vector>

#include <QByteArray>

namespace documents {

/** The cookies of a "Cookie" field, in order: name and value, without the spaces around. */
std::vector<std::pair<QByteArray, QByteArray>> cookiesOf(const QByteArray& field);

} // namespace documents
