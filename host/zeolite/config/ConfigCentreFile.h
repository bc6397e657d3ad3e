#pragma once

#include "zeolite/config/ConfigItems.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

#include <optional>

/**
 * The host file as the source of the configuration centre: read at construction and again, a moment after,
 * whenever it is written or replaced. While it is missing, unreadable or wrong the last good items stay; this
 * is logged.
 */
class ConfigCentreFile : public QObject
{
    Q_OBJECT
public:
    explicit ConfigCentreFile(const QString& path, QObject* parent = nullptr);

    const ConfigItems& items() const { return m_items; }

Q_SIGNALS:
    /** The items differ from those before. */
    void itemsChanged();

private Q_SLOTS:
    void readLater();
    void read();

private:
    void watch();
    void complain(const QString& reason);

    const QString m_path;
    QFileSystemWatcher m_watcher;
    QTimer m_settle;
    std::optional<QByteArray> m_bytes; //!< the last good ones
    QString m_complaint;
    ConfigItems m_items;
};
