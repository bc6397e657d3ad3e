#include "support/TemporarySite.h"

#include <stdexcept>

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace documents {

void writeFile(const QString& path, const QByteArray& content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        throw std::runtime_error("cannot write " + path.toStdString());
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TemporarySite::TemporarySite()
{
    add("site/home.html", "home");
    add("site/dist_langs/zh-CN/index-w.html", "text page");
    add("site/dist_langs/zh-CN/index-s.html", "table page");
    add("site/weboffice-static/js/app.js", "script");
    add("site/static/app.css", "style");
    add("site/version", " 2.5.0\n");
    add("secret.txt", "secret");
}

} // namespace documents
