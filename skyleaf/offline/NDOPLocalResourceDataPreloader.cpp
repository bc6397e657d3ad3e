#include "offline/NDOPLocalResourceDataPreloader.h"

#include "base/NDocsLog.h"
#include "base/NJsonNumber.h"
#include "offline/PackageFiles.h"
#include "proxy/NConfigCentreValues.h"
#include "zeolite/JsonHelper.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>

#include <limits>
#include <mutex>
#include <shared_mutex>

namespace NDocsOfflinePage {
namespace {

constexpr int preloadingItem = 59743;
constexpr int millisecondsPerMinute = 60000;

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
    loadFileOf(packageRoot, joined({packageRoot, QStringLiteral("dist_langs"), QStringLiteral("zh-CN"),
                                    QStringLiteral("index-%1.html").arg(officeType)}));
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
    QFile file(path);
    if (!file.exists()) {
        logReading(QStringLiteral("preload file %1 does not exist").arg(path));
        return;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        logReading(QStringLiteral("preload file %1 cannot be opened").arg(path));
        return;
    }
    const QByteArray text = file.readAll();
    file.close();
    if (text.isEmpty()) {
        logReading(QStringLiteral("preload file %1 is empty").arg(path));
        return;
    }
    const QJsonArray names = JsonHelper::convertByteArrayToQJson(text).value(QLatin1String("pc")).toArray();
    if (names.isEmpty()) {
        logReading(QStringLiteral("preload file %1 list is empty").arg(path));
        return;
    }
    for (const QJsonValue& name : names) {
        if (!name.toString().isEmpty())
            loadFileOf(packageRoot, packageRoot + name.toString());
    }
}

/** A package does not get to name files elsewhere. */
void NDOPLocalResourceDataPreloader::loadFileOf(const QString& packageRoot, const QString& path)
{
    if (npackagefiles::isFileWithin(packageRoot, path))
        loadFile(path);
    else if (QFile::exists(path))
        logReading(QStringLiteral("preload file %1 is not a file of the package").arg(path));
}

void NDOPLocalResourceDataPreloader::loadFile(const QString& path)
{
    if (m_stopping)
        return;
    {
        const QString key = QDir::toNativeSeparators(path);
        const std::shared_lock lock(m_lock);
        if (m_files.contains(key))
            return;
    }
    if (const std::optional<QByteArray> bytes = npackagefiles::readWhole(path))
        storeFile(path, *bytes);
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
