#include "service/DocumentHtml.h"

#include <algorithm>

#include <QJsonArray>
#include <QStringList>
#include <QUrl>

namespace documents {
namespace {

QString text(const QJsonObject& object, const char* member)
{
    return object.value(QLatin1String(member)).toString();
}

QString element(const QString& tag, const QString& inner)
{
    return QLatin1Char('<') + tag + QLatin1Char('>') + inner + QLatin1String("</") + tag + QLatin1Char('>');
}

bool isHarmlessAddress(const QString& address)
{
    const QString scheme = QUrl(address).scheme();
    return scheme == QLatin1String("http") || scheme == QLatin1String("https") ||
           scheme == QLatin1String("mailto") || (scheme.isEmpty() && address.startsWith(u'/'));
}

QString withMark(const QString& inner, const QJsonObject& mark)
{
    const QString type = text(mark, "type");
    if (type == QLatin1String("strong") || type == QLatin1String("em") || type == QLatin1String("code"))
        return element(type, inner);
    const QString address = text(mark.value(QLatin1String("attrs")).toObject(), "href");
    if (type == QLatin1String("link") && isHarmlessAddress(address))
        return QStringLiteral("<a href=\"%1\">%2</a>").arg(address.toHtmlEscaped(), inner);
    return inner;
}

QString textNode(const QJsonObject& node)
{
    QString html = text(node, "text").toHtmlEscaped();
    const QJsonArray marks = node.value(QLatin1String("marks")).toArray();
    for (const QJsonValue mark : marks)
        html = withMark(html, mark.toObject());
    return html;
}

QString imageNode(const QJsonObject& attributes)
{
    const QString source = text(attributes, "src");
    if (!isHarmlessAddress(source))
        return text(attributes, "alt").toHtmlEscaped();
    return QStringLiteral("<img src=\"%1\" alt=\"%2\">")
        .arg(source.toHtmlEscaped(), text(attributes, "alt").toHtmlEscaped());
}

QString headingTag(const QJsonObject& attributes)
{
    return QLatin1Char('h') +
           QString::number(std::clamp(attributes.value(QLatin1String("level")).toInt(1), 1, 6));
}

QString node(const QJsonObject& object);

QString children(const QJsonObject& object)
{
    QString html;
    const QJsonArray content = object.value(QLatin1String("content")).toArray();
    for (const QJsonValue child : content)
        html += node(child.toObject());
    return html;
}

QString node(const QJsonObject& object)
{
    const QString type = text(object, "type");
    const QJsonObject attributes = object.value(QLatin1String("attrs")).toObject();
    if (type == QLatin1String("text"))
        return textNode(object);
    if (type == QLatin1String("paragraph"))
        return element(QStringLiteral("p"), children(object));
    if (type == QLatin1String("heading"))
        return element(headingTag(attributes), children(object));
    if (type == QLatin1String("bullet_list"))
        return element(QStringLiteral("ul"), children(object));
    if (type == QLatin1String("ordered_list"))
        return element(QStringLiteral("ol"), children(object));
    if (type == QLatin1String("list_item"))
        return element(QStringLiteral("li"), children(object));
    if (type == QLatin1String("blockquote"))
        return element(QStringLiteral("blockquote"), children(object));
    if (type == QLatin1String("code_block"))
        return element(QStringLiteral("pre"), element(QStringLiteral("code"), children(object)));
    if (type == QLatin1String("horizontal_rule"))
        return QStringLiteral("<hr>");
    if (type == QLatin1String("hard_break"))
        return QStringLiteral("<br>");
    if (type == QLatin1String("image"))
        return imageNode(attributes);
    return children(object);
}

QString tableRow(const QString& cellTag, const QStringList& cells)
{
    QString html;
    for (const QString& cell : cells)
        html += element(cellTag, cell.toHtmlEscaped());
    return element(QStringLiteral("tr"), html);
}

QString sheet(const QJsonObject& object)
{
    QStringList titles;
    const QJsonArray columns = object.value(QLatin1String("columns")).toArray();
    for (const QJsonValue column : columns)
        titles.append(text(column.toObject(), "title"));

    QString rowsHtml;
    const QJsonArray rows = object.value(QLatin1String("rows")).toArray();
    for (const QJsonValue row : rows) {
        QStringList cells;
        const QJsonArray values = row.toArray();
        for (const QJsonValue value : values)
            cells.append(value.toVariant().toString());
        rowsHtml += tableRow(QStringLiteral("td"), cells);
    }
    return element(QStringLiteral("h2"), text(object, "name").toHtmlEscaped()) +
           element(QStringLiteral("table"),
                   element(QStringLiteral("thead"), tableRow(QStringLiteral("th"), titles)) +
                       element(QStringLiteral("tbody"), rowsHtml));
}

} // namespace

QString contentToHtml(const QJsonObject& content)
{
    if (text(content, "type") == QLatin1String("doc"))
        return children(content);
    QString html;
    const QJsonArray sheets = content.value(QLatin1String("sheets")).toArray();
    for (const QJsonValue entry : sheets)
        html += sheet(entry.toObject());
    return html;
}

} // namespace documents
