#include "nheliostat/framework/PluginTranslators.h"

#include <QCoreApplication>
#include <QLocale>

#include <utility>

PluginTranslators::PluginTranslators(QString directory)
    : m_directory(std::move(directory))
{
}

PluginTranslators::~PluginTranslators() = default;

void PluginTranslators::install(const QString& module, const QStringList& names)
{
    Module& entry = m_modules[module];
    if (++entry.uses > 1)
        return;
    for (const QString& name : names) {
        auto translator = std::make_unique<QTranslator>();
        if (!translator->load(QLocale(), name, QStringLiteral("_"), m_directory))
            continue;
        QCoreApplication::installTranslator(translator.get());
        entry.translators.push_back(std::move(translator));
    }
}

void PluginTranslators::uninstall(const QString& module)
{
    const auto entry = m_modules.find(module);
    // A translator that is deleted leaves the application by itself.
    if (entry != m_modules.end() && --entry->second.uses == 0)
        m_modules.erase(entry);
}
