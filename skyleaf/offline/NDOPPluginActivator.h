#pragma once

#include <QMap>
#include <QMetaObject>
#include <QString>

class NPlugin;

/** Has front-end plug-ins that are missing loaded or else downloaded, for later opens. User-interface thread.
 */
class NDOPPluginActivator
{
public:
    /** Created on first use; lives as long as the process. */
    static NDOPPluginActivator& instance();

    /** Who asks, as the reports name it. */
    void setScene(const QString& scene) { m_scene = scene; }
    /** Has the plug-in of an office type loaded at a later turn of the event loop. */
    void requestPluginActivation(const QString& officeType);

private:
    NDOPPluginActivator();

    void activatePlugin(const QString& pluginName);
    void requestDownload(const QString& pluginName) const;
    void report(const QString& pluginName, const QString& error, const NPlugin* plugin) const;

    QMap<QString, bool> m_activated; //!< by office type; those that are served from local packages only
    bool m_asksAgain = true;         //!< every request counts, not just the first of an office type
    bool m_hasMissing = true;        //!< some office type is not activated yet
    QString m_scene;
    QMap<QString, QMetaObject::Connection> m_failureWatches; //!< by plug-in name
};
