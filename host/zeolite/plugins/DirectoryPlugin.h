#pragma once

#include "zeolite/NPlugin.h"

/**
 * A plug-in that lies unpacked in a directory. It is complete when its file "version" holds a text.
 *
 * `load` answers at once, 3 or 2, and reports by `loadSuccess` or `loadFailed` at the next turn of the event
 * loop; loading again what is loaded already reports nothing.
 */
class DirectoryPlugin final : public NPlugin
{
    Q_OBJECT
public:
    DirectoryPlugin(QString name, QString directory);

    QString name() const override;
    int load(int priority = 0, int options = 0) override;
    State state() const override;
    QString localPath() const override;
    /** "version" while loaded; nothing else is known. */
    QVariant getProp(const QString& name) const override;

    /** Whether a plug-in lies in the directory. */
    static bool isComplete(const QString& directory);

    QString directory() const { return m_directory; }
    void setDirectory(const QString& directory);
    /** Takes in what became of the directory: loads again unless `load` was never called. */
    void rescan();

private:
    const QString m_name;
    QString m_directory;
    QString m_version;
    State m_state = NotLoaded;
};
