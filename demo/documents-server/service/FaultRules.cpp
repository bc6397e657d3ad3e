#include "service/FaultRules.h"

#include <algorithm>
#include <iterator>

#include <QJsonValue>

#include "store/Document.h"

namespace documents {
namespace {

constexpr qint64 longestDelayMs = 600'000;
constexpr qint64 largestBody = 256LL * 1024 * 1024;
constexpr char filler = '.';

bool isHeaderText(const QString& text)
{
    return !text.isEmpty() && std::none_of(text.begin(), text.end(), [](QChar c) {
        return c < QLatin1Char(' ') || c.unicode() == 0x7f;
    });
}

/** True when the member was taken over into the fault. */
bool takeMember(const QString& member, const QJsonValue& value, Fault& fault)
{
    const auto number = wholeNumber(value);
    if (member == QLatin1String("status") && number && *number >= 200 && *number <= 599)
        fault.status = static_cast<int>(*number);
    else if (member == QLatin1String("body") && value.isString())
        fault.body = value.toString().toUtf8();
    else if (member == QLatin1String("location") && isHeaderText(value.toString()))
        fault.location = value.toString().toUtf8();
    else if (member == QLatin1String("size") && number && *number >= 0 && *number <= largestBody)
        fault.body = fault.body.value_or(QByteArray()).leftJustified(static_cast<int>(*number), filler, true);
    else if (member == QLatin1String("times") && number && *number >= 1)
        fault.times = *number;
    else if (member == QLatin1String("delayMs") && number && *number >= 0 && *number <= longestDelayMs)
        fault.delay = std::chrono::milliseconds(*number);
    else if (member == QLatin1String("cutAfter") && number && *number >= 0)
        fault.cutAfter = *number;
    else if (member == QLatin1String("reset") && value.isBool())
        fault.reset = value.toBool();
    else
        return false;
    return true;
}

Result<Fault> parseFault(const QString& prefix, const QJsonValue& value)
{
    if (!prefix.startsWith(u'/') || prefix.startsWith(QLatin1String("/_control")))
        return Error{ErrorCode::Invalid, QStringLiteral("\"%1\" is not a path that can fail.").arg(prefix)};
    if (!value.isObject())
        return Error{ErrorCode::Invalid, QStringLiteral("\"%1\" must be an object.").arg(prefix)};
    Fault fault;
    const QJsonObject members = value.toObject();
    for (auto member = members.begin(); member != members.end(); ++member) {
        if (!takeMember(member.key(), member.value(), fault))
            return Error{ErrorCode::Invalid,
                         QStringLiteral("\"%1\": \"%2\" is not known or has a wrong value.")
                             .arg(prefix, member.key())};
    }
    return fault;
}

} // namespace

Failure FaultRules::setRules(const QJsonObject& rules)
{
    std::map<QByteArray, Fault> accepted;
    for (auto rule = rules.begin(); rule != rules.end(); ++rule) {
        const auto fault = parseFault(rule.key(), rule.value());
        if (!fault)
            return fault.error();
        accepted[rule.key().toUtf8()] = *fault;
    }
    m_rules = std::move(accepted);
    return std::nullopt;
}

std::optional<Fault> FaultRules::take(const QByteArray& target)
{
    if (target.startsWith("/_control"))
        return std::nullopt;
    // Keys ascend, so of two beginnings that fit, the longer comes later.
    const auto rule = std::find_if(m_rules.rbegin(), m_rules.rend(),
                                   [&target](const auto& entry) { return target.startsWith(entry.first); });
    if (rule == m_rules.rend())
        return std::nullopt;
    const Fault fault = rule->second;
    if (rule->second.times && --*rule->second.times == 0)
        m_rules.erase(std::prev(rule.base()));
    return fault;
}

} // namespace documents
