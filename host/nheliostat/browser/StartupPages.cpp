#include "nheliostat/browser/StartupPages.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <algorithm>

namespace nheliostat::browser {

namespace {

const QString urlMember = QStringLiteral("url");
const QString titleMember = QStringLiteral("title");

} // namespace

QVector<StartupPage> readStartupPages(const QString& file)
{
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly))
        return {};
    QVector<StartupPage> pages;
    const QJsonArray items = QJsonDocument::fromJson(source.readAll()).array();
    for (const QJsonValue& item : items) {
        const StartupPage page{item[urlMember].toString(), item[titleMember].toString()};
        if (!page.url.isEmpty())
            pages.append(page);
    }
    return pages;
}

bool addStartupPage(const QString& file, const StartupPage& page)
{
    QVector<StartupPage> pages = readStartupPages(file);
    const auto isSame = [&page](const StartupPage& other) { return other.url == page.url; };
    const auto found = std::find_if(pages.begin(), pages.end(), isSame);
    if (found != pages.end())
        *found = page;
    else
        pages.append(page);

    QJsonArray items;
    for (const StartupPage& kept : qAsConst(pages))
        items.append(QJsonObject{{urlMember, kept.url}, {titleMember, kept.title}});
    QDir().mkpath(QFileInfo(file).absolutePath());
    QSaveFile target(file);
    return target.open(QIODevice::WriteOnly) && target.write(QJsonDocument(items).toJson()) >= 0 &&
           target.commit();
}

} // namespace nheliostat::browser
