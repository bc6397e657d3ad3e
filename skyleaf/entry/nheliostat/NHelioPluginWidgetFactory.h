#pragma once

#include <QString>

class QWidget;

/** One page type: creates pages of it. Constructed and registered by the module that owns the page class. */
class NHelioPluginWidgetFactoryItemBase
{
public:
    explicit NHelioPluginWidgetFactoryItemBase(int type)
        : m_type(type)
    {
    }
    explicit NHelioPluginWidgetFactoryItemBase(const QString& type)
        : m_strType(type)
    {
    }
    NHelioPluginWidgetFactoryItemBase(const NHelioPluginWidgetFactoryItemBase&) = delete;
    NHelioPluginWidgetFactoryItemBase& operator=(const NHelioPluginWidgetFactoryItemBase&) = delete;

    /** A new page, owned by the caller, or null. */
    virtual QWidget* createWidget(QWidget* parent) = 0;
    /** Whether pages of this type have a method of exactly this name that can be invoked by name. */
    virtual bool hasMethod(const QString& name) const = 0;
    virtual ~NHelioPluginWidgetFactoryItemBase() = default;

    /** The widget type number; -1 for an item registered under a string type. */
    int type() const { return m_type; }
    QString strType() const { return m_strType; }

private:
    int m_type = -1;
    QString m_strType;
};

/** The shell's page factory. Items are not owned; each unregisters itself before it goes. */
class NHelioPluginWidgetFactory
{
public:
    static void registerPagePlugin(NHelioPluginWidgetFactoryItemBase* item);
    static void unregisterPagePlugin(NHelioPluginWidgetFactoryItemBase* item);
    static void unregisterStrPagePlugin(NHelioPluginWidgetFactoryItemBase* item);

    /** The item of a type, or null. */
    static NHelioPluginWidgetFactoryItemBase* findItem(int type);
};
