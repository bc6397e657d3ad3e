#include "nheliostat/browser/StartupPages.h"

#include "nrt/files.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace nheliostat::browser {

namespace {

const QString urlMember = QStringLiteral("url");
const QString titleMember = QStringLiteral("title");

constexpr int mostStartupPages = 100;

} // namespace

QVector<StartupPage> readStartupPages(const QString& file)
{
    constexpr qint64 largest = 1 << 20; // bytes
    QVector<StartupPage> pages;
    const QJsonArray items = QJsonDocument::fromJson(nrt::files::read(file, largest).bytes).array();
    for (const QJsonValue& item : items) {
        const StartupPage page{item[urlMember].toString(), item[titleMember].toString()};
        if (!page.url.isEmpty() && pages.size() < mostStartupPages)
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
    else if (pages.size() >= mostStartupPages)
        return false;
    else
        pages.append(page);

    QJsonArray items;
    for (const StartupPage& kept : qAsConst(pages))
        items.append(QJsonObject{{urlMember, kept.url}, {titleMember, kept.title}});
    QDir().mkpath(QFileInfo(file).absolutePath());
    return nrt::files::replace(file, QJsonDocument(items).toJson()).isEmpty();
}

} // namespace nheliostat::browser
