#pragma once

#include "nheliostat/NHelioPluginWidgetFactory.h"

#include <QMetaMethod>

/** How the pages of a class are constructed; specialised where a class needs more. */
template <typename Page>
struct NPageCreation;

/** The factory item of one page class: registers itself, and unregisters itself before it goes. */
template <typename Page>
class NHelioPluginWidgetFactoryItem : public NHelioPluginWidgetFactoryItemBase
{
public:
    explicit NHelioPluginWidgetFactoryItem(int type)
        : NHelioPluginWidgetFactoryItemBase(type)
    {
        NHelioPluginWidgetFactory::registerPagePlugin(this);
    }

    QWidget* createWidget(QWidget* parent) override
    {
        // A page that cannot be constructed is no page: the shell decides what to show then.
        try {
            return NPageCreation<Page>::create(parent);
        } catch (...) {
            return nullptr;
        }
    }

    bool hasMethod(const QString& name) const override
    {
        const QMetaObject& meta = Page::staticMetaObject;
        const QByteArray wanted = name.toUtf8();
        for (int i = 0; i < meta.methodCount(); ++i) {
            const QByteArray signature = meta.method(i).methodSignature();
            if (signature.left(signature.indexOf('(')) == wanted)
                return true;
        }
        return false;
    }

    ~NHelioPluginWidgetFactoryItem() override
    {
        if (type() == -1 && !strType().isEmpty())
            NHelioPluginWidgetFactory::unregisterStrPagePlugin(this);
        if (type() != -1)
            NHelioPluginWidgetFactory::unregisterPagePlugin(this);
    }
};
