#pragma once

#include <QString>
#include <QStringList>
#include <QTranslator>

#include <map>
#include <memory>
#include <vector>

/**
 * The translations that modules have installed in the application. A module may install its translations
 * several times; they go with the last uninstall. A missing translation file is no error: the texts stay
 * untranslated.
 */
class PluginTranslators
{
public:
    /** `directory` holds "<name>_<locale>.qm" files. */
    explicit PluginTranslators(QString directory);
    ~PluginTranslators();
    PluginTranslators(const PluginTranslators&) = delete;
    PluginTranslators& operator=(const PluginTranslators&) = delete;

    void install(const QString& module, const QStringList& names);
    void uninstall(const QString& module);

private:
    struct Module
    {
        int uses = 0;
        std::vector<std::unique_ptr<QTranslator>> translators;
    };

    QString m_directory;
    std::map<QString, Module> m_modules;
};
