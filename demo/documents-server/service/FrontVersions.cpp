#include "service/FrontVersions.h"

#include <QFile>
#include <QJsonValue>

#include "store/OfficeTypes.h"

namespace documents {
namespace {

constexpr qint64 defaultLifetime = 30LL * 24 * 60 * 60;

const QLatin1String filesMember("files");
const QLatin1String versionMember("front_ver");
const QLatin1String expireMember("expire_time");
const QLatin1String upgradeMember("must_upgrade");

Failure checkMember(const QString& package, const QString& member, const QJsonValue& value)
{
    const auto wrong = [&](const char* what) {
        return Error{ErrorCode::Invalid,
                     QStringLiteral("\"%1\": \"%2\" must be %3.").arg(package, member, QLatin1String(what))};
    };
    if (member == versionMember)
        return value.isString() && !value.toString().isEmpty() ? std::nullopt : Failure(wrong("a text"));
    if (member == expireMember)
        return wholeNumber(value) ? std::nullopt : Failure(wrong("a whole number of seconds"));
    if (member == upgradeMember)
        return value.isBool() ? std::nullopt : Failure(wrong("true or false"));
    return Error{ErrorCode::Invalid, QStringLiteral("\"%1\": \"%2\" is not known.").arg(package, member)};
}

Failure checkOverride(const QString& package, const QJsonValue& value)
{
    if (!value.isObject())
        return Error{ErrorCode::Invalid, QStringLiteral("\"%1\" must be an object.").arg(package)};
    const QJsonObject members = value.toObject();
    for (auto member = members.begin(); member != members.end(); ++member) {
        if (Failure failure = checkMember(package, member.key(), member.value()))
            return failure;
    }
    return std::nullopt;
}

using Overrides = std::map<QString, QJsonObject>;

/** Overrides by names that `isName` knows; `what` says in an error what they are. */
Result<Overrides> readOverrides(const QJsonObject& object, bool (*isName)(const QString&), const char* what)
{
    Overrides accepted;
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        if (!isName(entry.key()))
            return Error{ErrorCode::Invalid,
                         QStringLiteral("\"%1\" is not %2.").arg(entry.key(), QLatin1String(what))};
        if (Failure failure = checkOverride(entry.key(), entry.value()))
            return *failure;
        accepted[entry.key()] = entry.value().toObject();
    }
    return accepted;
}

QJsonObject membersOf(const Overrides& overrides, const QString& name)
{
    const auto found = overrides.find(name);
    return found == overrides.end() ? QJsonObject() : found->second;
}

QString siteVersion(const QString& siteDirectory)
{
    QFile file(siteDirectory + QLatin1String("/version"));
    const QString text =
        file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed() : QString();
    return text.isEmpty() ? QStringLiteral("1.0.0") : text;
}

} // namespace

FrontVersions::FrontVersions(QString siteDirectory, Clock clock)
    : m_siteDirectory(std::move(siteDirectory))
    , m_clock(std::move(clock))
{
}

FrontVersion FrontVersions::of(const QString& package) const
{
    return chosen(membersOf(m_overrides, package));
}

FrontVersion FrontVersions::of(const QString& package, const QString& documentId) const
{
    QJsonObject members = membersOf(m_overrides, package);
    const QJsonObject own = membersOf(m_documents, documentId);
    for (auto member = own.begin(); member != own.end(); ++member)
        members.insert(member.key(), member.value());
    return chosen(members);
}

FrontVersion FrontVersions::chosen(const QJsonObject& members) const
{
    FrontVersion front;
    front.version = members.contains(versionMember) ? members.value(versionMember).toString()
                                                    : siteVersion(m_siteDirectory);
    front.expireTime = wholeNumber(members.value(expireMember)).value_or(m_clock() / 1000 + defaultLifetime);
    front.mustUpgrade = members.value(upgradeMember).toBool(false);
    return front;
}

Failure FrontVersions::setOverrides(const QJsonObject& overrides)
{
    const QJsonValue files = overrides.value(filesMember);
    if (!files.isUndefined() && !files.isObject())
        return Error{ErrorCode::Invalid, QStringLiteral("\"files\" must be an object.")};
    QJsonObject packages = overrides;
    packages.remove(filesMember);

    const auto byPackage = readOverrides(
        packages, [](const QString& name) { return officeTypeByPackage(name) != nullptr; },
        "a known package");
    const auto byDocument = readOverrides(files.toObject(), isDocumentId, "a document's id");
    if (!byPackage)
        return byPackage.error();
    if (!byDocument)
        return byDocument.error();
    m_overrides = *byPackage;
    m_documents = *byDocument;
    return std::nullopt;
}

} // namespace documents
