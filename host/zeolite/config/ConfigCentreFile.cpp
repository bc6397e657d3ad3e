#include "zeolite/config/ConfigCentreFile.h"

#include <QFileInfo>

#include "nrt/files.h"
#include "zeolite/NxLoggerLite.h"

namespace {

// Writers truncate and fill, or write several times: the file is read when this time has passed since the
// first sign.
constexpr int settleMs = 50;

constexpr qint64 largestHostFile = 32LL << 20; //!< bytes

} // namespace

ConfigCentreFile::ConfigCentreFile(const QString& path, QObject* parent)
    : QObject(parent)
    , m_path(QFileInfo(path).absoluteFilePath())
{
    m_settle.setSingleShot(true);
    m_settle.setInterval(settleMs);
    connect(&m_settle, &QTimer::timeout, this, &ConfigCentreFile::read);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &ConfigCentreFile::readLater);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &ConfigCentreFile::readLater);
    read();
}

void ConfigCentreFile::readLater()
{
    if (!m_settle.isActive())
        m_settle.start();
}

/** A file that was replaced loses its watch; the directory tells when it is back. */
void ConfigCentreFile::watch()
{
    if (!m_watcher.files().contains(m_path) && QFileInfo::exists(m_path))
        m_watcher.addPath(m_path);
    const QString directory = QFileInfo(m_path).path();
    if (!m_watcher.directories().contains(directory) && QFileInfo::exists(directory))
        m_watcher.addPath(directory);
}

void ConfigCentreFile::read()
{
    watch(); // before reading, so that no change falls between
    const nrt::files::Reading file = nrt::files::read(m_path, largestHostFile);
    if (!file) {
        complain(file.reason);
        return;
    }
    if (file.bytes == m_bytes && m_complaint.isEmpty())
        return;
    const ConfigItemsResult result = parseConfigItems(file.bytes);
    if (!result.error.isEmpty()) {
        complain(result.error);
        return;
    }
    m_complaint.clear();
    m_bytes = file.bytes;
    if (result.items == m_items)
        return;
    m_items = result.items;
    Q_EMIT itemsChanged();
}

void ConfigCentreFile::complain(const QString& reason)
{
    if (reason == m_complaint)
        return;
    m_complaint = reason;
    NxLoggerLite::writeWarning(QStringLiteral("zeolite"),
                               QStringLiteral("configuration centre: %1: %2, the last good data stays--%3")
                                   .arg(m_path, reason, QLatin1String("ConfigCentreFile::read")));
}
