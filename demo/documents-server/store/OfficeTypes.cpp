#include "store/OfficeTypes.h"

#include <algorithm>
#include <array>

#include <QJsonArray>

namespace documents {
namespace {

constexpr std::array<OfficeType, 8> officeTypes = {{
    {QLatin1String("d"), QLatin1String("db"), QLatin1String("quilldb"), QLatin1String("dbt")},
    {QLatin1String("s"), QLatin1String("vs"), QLatin1String("quillvs"), QLatin1String("xlsx")},
    {QLatin1String("w"), QLatin1String("word"), QLatin1String("quillword"), QLatin1String("docx")},
    {QLatin1String("p"), QLatin1String("vpp"), QLatin1String("quillvpp"), QLatin1String("pptx")},
    {QLatin1String("f"), QLatin1String("pdf"), QLatin1String("quillpdf"), QLatin1String("pdf")},
    {QLatin1String("o"), QLatin1String("otl"), QLatin1String("quill"), QLatin1String("otl")},
    {QLatin1String("k"), QLatin1String("nsheet"), QLatin1String("quillnsheet"), QLatin1String("nsheet")},
    {QLatin1String("mo"), QLatin1String("motl"), QLatin1String("quillmotl"), QLatin1String("motl")},
}};

template <typename Match>
const OfficeType* find(Match match)
{
    const auto found = std::find_if(officeTypes.begin(), officeTypes.end(), match);
    return found == officeTypes.end() ? nullptr : &*found;
}

QJsonObject emptyText()
{
    const QJsonObject paragraph{{QStringLiteral("type"), QStringLiteral("paragraph")}};
    return {{QStringLiteral("type"), QStringLiteral("doc")},
            {QStringLiteral("content"), QJsonArray{paragraph}}};
}

QJsonObject emptyTable()
{
    constexpr int columnCount = 6;
    constexpr int rowCount = 20;
    constexpr int columnWidth = 120;

    QJsonArray columns;
    QJsonArray row;
    for (int i = 0; i < columnCount; ++i) {
        columns.append(QJsonObject{{QStringLiteral("title"), QString(QChar(u'A' + i))},
                                   {QStringLiteral("width"), columnWidth}});
        row.append(QString());
    }
    QJsonArray rows;
    for (int i = 0; i < rowCount; ++i)
        rows.append(row);
    const QJsonObject sheet{{QStringLiteral("name"), QStringLiteral("Sheet1")},
                            {QStringLiteral("columns"), columns},
                            {QStringLiteral("rows"), rows}};
    return {{QStringLiteral("sheets"), QJsonArray{sheet}}};
}

} // namespace

const OfficeType* officeTypeByCode(const QString& code)
{
    return find([&code](const OfficeType& type) { return type.code == code; });
}

const OfficeType* officeTypeByPackage(const QString& package)
{
    return find([&package](const OfficeType& type) { return type.package == package; });
}

const OfficeType* officeTypeByPlugin(const QString& plugin)
{
    return find([&plugin](const OfficeType& type) { return type.plugin == plugin; });
}

QJsonObject emptyContent(const OfficeType& type)
{
    if (type.code == QLatin1String("s") || type.code == QLatin1String("k") || type.code == QLatin1String("d"))
        return emptyTable();
    if (type.code == QLatin1String("w") || type.code == QLatin1String("o") ||
        type.code == QLatin1String("mo"))
        return emptyText();
    return {};
}

} // namespace documents
