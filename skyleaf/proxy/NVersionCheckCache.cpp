#include "proxy/NVersionCheckCache.h"

#include "base/NClock.h"
#include "base/NReadOnce.h"
#include "nrt/kcc.h"
#include "proxy/NConfigCentreValues.h"

#include <memory>

namespace nversioncheckcache {
namespace {

const QString officeTypeMember = QStringLiteral("officeType");
const QString expiredDateMember = QStringLiteral("expiredDate");

QString storeKey()
{
    return nrt::kcc::pluginPerfix() + QStringLiteral("skyleaf/vcs_cache/");
}

QVariantMap load()
{
    const QVariantMap entries = cleaned(nrt::kcc::value(storeKey()).toMap(), nclock::today());
    nrt::kcc::setValue(storeKey(), entries);
    return entries;
}

QVariantMap& entries()
{
    static NReadOnce<std::shared_ptr<QVariantMap>> loaded(
        [] { return std::make_shared<QVariantMap>(load()); });
    return *loaded();
}

} // namespace

QVariantMap cleaned(const QVariantMap& entries, const QDate& today)
{
    QVariantMap good;
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        const QVariantMap record = entry.value().toMap();
        const QDate expiredDate = record.value(expiredDateMember).toDate();
        if (!entry.key().isEmpty() && expiredDate.isValid() && expiredDate > today &&
            !record.value(officeTypeMember).toString().isEmpty()) {
            good.insert(entry.key(), entry.value());
        }
    }
    return good;
}

QString get(const QString& key)
{
    QVariantMap& known = entries();
    const auto found = known.find(key);
    if (key.isEmpty() || found == known.end())
        return {};
    const QVariantMap record = found->toMap();
    const QDate expiredDate = record.value(expiredDateMember).toDate();
    if (!expiredDate.isValid())
        return {};
    if (expiredDate > nclock::today())
        return record.value(officeTypeMember).toString();
    known.erase(found);
    nrt::kcc::setValue(storeKey(), known);
    return {};
}

void set(const QString& key, const QString& officeType)
{
    if (key.isEmpty() || officeType.isEmpty())
        return;
    QVariantMap& known = entries();
    known.insert(key, QVariantMap{{officeTypeMember, officeType},
                                  {expiredDateMember,
                                   nclock::today().addDays(nconfigvalues::versionCheckCacheDays())}});
    nrt::kcc::setValue(storeKey(), known);
}

} // namespace nversioncheckcache
