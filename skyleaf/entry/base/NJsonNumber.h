#pragma once

#include <QJsonValue>

/** The whole part of a JSON number; `fallback` when the value is none or does not fit. */
inline qint64 wholeNumber(const QJsonValue& value, qint64 fallback)
{
    constexpr double largest = 9.0e18;
    const double number = value.isDouble() ? value.toDouble() : largest;
    return number > -largest && number < largest ? static_cast<qint64>(number) : fallback;
}
