#include "proxy/NOfficeTypes.h"

#include "nrt/fileFilter.h"

#include <QHash>
#include <QLatin1String>

#include <algorithm>
#include <array>

namespace nofficetypes {
namespace {

struct OfficeType
{
    QLatin1String code;
    QLatin1String package;
    QLatin1String plugin;
    bool preopen;
    bool ssr;
};

constexpr std::array<OfficeType, 8> table{{
    {QLatin1String("d"), QLatin1String("db"), QLatin1String("quilldb"), true, false},
    {QLatin1String("s"), QLatin1String("vs"), QLatin1String("quillvs"), true, true},
    {QLatin1String("w"), QLatin1String("word"), QLatin1String("quillword"), true, false},
    {QLatin1String("p"), QLatin1String("vpp"), QLatin1String("quillvpp"), true, true},
    {QLatin1String("f"), QLatin1String("pdf"), QLatin1String("quillpdf"), false, false},
    {QLatin1String("o"), QLatin1String("otl"), QLatin1String("quill"), true, true},
    {QLatin1String("k"), QLatin1String("nsheet"), QLatin1String("quillnsheet"), true, true},
    {QLatin1String("mo"), QLatin1String("motl"), QLatin1String("quillmotl"), false, true},
}};

const OfficeType* find(const QString& officeType)
{
    const auto found = std::find_if(table.begin(), table.end(),
                                    [&](const OfficeType& type) { return officeType == type.code; });
    return found == table.end() ? nullptr : &*found;
}

QString codeOfKnownType(const QString& fileType)
{
    static const QHash<QString, QString> byType{
        {QStringLiteral("otl"), QStringLiteral("o")},
        {QStringLiteral("vs"), QStringLiteral("s")},
        {QStringLiteral("word"), QStringLiteral("w")},
        {QStringLiteral("motl"), QStringLiteral("mo")},
        {QStringLiteral("dbt"), QStringLiteral("d")},
        {QStringLiteral("vpp"), QStringLiteral("p")},
        {QStringLiteral("pdf"), QStringLiteral("f")},
        {QStringLiteral("nsheet"), QStringLiteral("k")},
        {QStringLiteral("onlinevs"), QStringLiteral("s")},
        {QStringLiteral("onlinevlt"), QStringLiteral("w")},
        {QStringLiteral("onlinevpp"), QStringLiteral("p")},
        {QStringLiteral("onlinepdf"), QStringLiteral("f")},
    };
    return byType.value(fileType);
}

} // namespace

QStringList codes()
{
    QStringList all;
    for (const OfficeType& type : table)
        all << type.code;
    return all;
}

QString packageName(const QString& officeType)
{
    const OfficeType* type = find(officeType);
    return type ? QString(type->package) : QString();
}

QString pluginName(const QString& officeType)
{
    const OfficeType* type = find(officeType);
    return type ? QString(type->plugin) : QString();
}

QString codeOfFileType(const QString& fileType)
{
    const QString known = codeOfKnownType(fileType);
    if (!known.isEmpty())
        return known;

    switch (nrt::fileFilterType(fileType)) {
    case nrt::FileFilter::Text:
        return codeOfKnownType(QStringLiteral("word"));
    case nrt::FileFilter::Presentation:
        return codeOfKnownType(QStringLiteral("vpp"));
    case nrt::FileFilter::Spreadsheet:
        return codeOfKnownType(QStringLiteral("vs"));
    case nrt::FileFilter::Pdf:
        return codeOfKnownType(QStringLiteral("pdf"));
    case nrt::FileFilter::Other:
        break;
    }
    return {};
}

bool isPreopenSupported(const QString& officeType)
{
    const OfficeType* type = find(officeType);
    return type && type->preopen;
}

bool isSsrSupported(const QString& officeType)
{
    const OfficeType* type = find(officeType);
    return type && type->ssr;
}

} // namespace nofficetypes
