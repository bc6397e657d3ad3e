#include "offline/NDOPLocalResourceDataPreloader.h"

#include "base/NDocsLog.h"
#include "base/NJsonNumber.h"
#include "offline/PackageFiles.h"
#include "proxy/NConfigCentreValues.h"
#include "zeolite/JsonHelper.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <limits>
#include <mutex>
#include <shared_mutex>

namespace NDocsOfflinePage {
namespace {

constexpr int preloadingItem = 59743;
constexpr int millisecondsPerMinute = 60000;
constexpr qint64 mostPreloaded = 256LL << 20; //!< bytes that one package's list adds

QString joined(const QStringList& parts)
{
    return parts.join(QDir::separator());
}

void logReading(const QString& message)
{
    ndocslog::info(message, "NDocsOfflinePage::NDOPLocalResourceDataPreloader::readLocalResource");
}

} // namespace

NDOPLocalResourceDataPreloader::NDOPLocalResourceDataPreloader()
{
    init();
}

NDOPLocalResourceDataPreloader::~NDOPLocalResourceDataPreloader()
{
    stop();
    m_cleanTimer.stop();
}

void NDOPLocalResourceDataPreloader::init()
{
    if (!nconfigvalues::isPreloadingOn())
        return;
    const QJsonValue interval =
        nconfigvalues::item(preloadingItem).value(QLatin1String("clean_timer_interval"));
    const qint64 minutes = wholeNumber(interval, m_cleanIntervalMinutes);
    if (minutes >= 1) // a timer without an interval would never rest
        m_cleanIntervalMinutes =
            qMin(minutes, qint64(std::numeric_limits<int>::max() / millisecondsPerMinute));
    ndocslog::info(QStringLiteral("preloaded data will be cleaned in %1 mins").arg(m_cleanIntervalMinutes),
                   "NDocsOfflinePage::NDOPLocalResourceDataPreloader::init");
    connect(&m_cleanTimer, &QTimer::timeout, this, &NDOPLocalResourceDataPreloader::onClean);
    m_cleanTimer.setInterval(int(m_cleanIntervalMinutes) * millisecondsPerMinute);
}

void NDOPLocalResourceDataPreloader::readLocalResource(const QString& packageRoot, const QString& officeType)
{
    if (m_stopping)
        return;
    startCleanTimer();
    load(packageRoot,
         joined({packageRoot, QStringLiteral("dist_langs"), QStringLiteral("zh-CN"),
                 QStringLiteral("index-%1.html").arg(officeType)}),
         npackagefiles::largestPage);
    loadListedFiles(packageRoot);
}

void NDOPLocalResourceDataPreloader::startCleanTimer()
{
    if (m_cleanTimer.interval() == 0)
        return; // the configuration was not there in time: the data stays
    QMetaObject::invokeMethod(&m_cleanTimer, "start");
    logReading(QStringLiteral("clean timer started"));
}

void NDOPLocalResourceDataPreloader::loadListedFiles(const QString& packageRoot)
{
    const QString path = joined({packageRoot, QStringLiteral("preload-file.json")});
    if (!QFileInfo::exists(path)) {
        logReading(QStringLiteral("preload file %1 does not exist").arg(path));
        return;
    }
    const auto list = npackagefiles::readWithin(packageRoot, path, npackagefiles::largestList);
    if (!list) {
        logReading(QStringLiteral("preload file %1 cannot be opened").arg(path));
        return;
    }
    const QByteArray& text = *list;
    if (text.isEmpty()) {
        logReading(QStringLiteral("preload file %1 is empty").arg(path));
        return;
    }
    const QJsonArray names = JsonHelper::convertByteArrayToQJson(text).value(QLatin1String("pc")).toArray();
    if (names.isEmpty()) {
        logReading(QStringLiteral("preload file %1 list is empty").arg(path));
        return;
    }
    qint64 budget = mostPreloaded;
    for (const QJsonValue& name : names) {
        if (!name.toString().isEmpty())
            budget -= load(packageRoot, packageRoot + name.toString(), npackagefiles::largestScript);
        if (budget < 0) {
            logReading(QStringLiteral("preload file %1 lists more than is preloaded").arg(path));
            return;
        }
    }
}

void NDOPLocalResourceDataPreloader::loadFile(const QString& path)
{
    load(QFileInfo(path).path(), path, npackagefiles::largestScript);
}

/** Reads a file that lies in the directory; answers how many bytes were added. */
qint64 NDOPLocalResourceDataPreloader::load(const QString& directory, const QString& path, qint64 largest)
{
    if (m_stopping)
        return 0;
    {
        const QString key = QDir::toNativeSeparators(path);
        const std::shared_lock lock(m_lock);
        if (m_files.contains(key))
            return 0;
    }
    const auto bytes = npackagefiles::readWithin(directory, path, largest);
    if (!bytes)
        return 0;
    storeFile(path, *bytes);
    return bytes->size();
}

QByteArray NDOPLocalResourceDataPreloader::fileData(const QString& path) const
{
    const QString key = QDir::toNativeSeparators(path);
    const std::shared_lock lock(m_lock);
    return m_files.value(key);
}

void NDOPLocalResourceDataPreloader::storeFile(const QString& path, const QByteArray& bytes)
{
    const QString key = QDir::toNativeSeparators(path);
    const std::unique_lock lock(m_lock);
    m_files.insert(key, bytes);
}

void NDOPLocalResourceDataPreloader::onClean()
{
    QHash<QString, QByteArray> dropped; // freed when the lock is no longer held
    {
        const std::unique_lock lock(m_lock);
        dropped.swap(m_files);
    }
    m_cleanTimer.stop();
    ndocslog::info(QStringLiteral("preloaded data cleaned"),
                   "NDocsOfflinePage::NDOPLocalResourceDataPreloader::onClean");
    Q_EMIT preloadedDataClean();
}

} // namespace NDocsOfflinePage
