#pragma once

#include "nheliostat/NHelioPage.h"

#include <QPointer>

class NHelioBrowserWidgetBase;

/** Receives the browser that was asked for. */
class NHelioBrowserCreator : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /** Whether a browser arrived and still exists. */
    bool isCreateSucceeded() const;
    /** Called by whoever made the browser, once. */
    void deliver(NHelioBrowserWidgetBase* browser);

Q_SIGNALS:
    void createSucceeded(NHelioBrowserWidgetBase* browser);

private:
    QPointer<QWidget> m_browser;
};

/** Makes pages for links that a browser opens in a new page. */
class IHelioBrowserPageFactory
{
public:
    virtual ~IHelioBrowserPageFactory() = default;
    /** A new page without parent, owned by the caller; never notified. The caller has a browser delivered to
     * its browser creator. */
    virtual NHelioAppPage* createPage() = 0;
};

/** What a browser is created with. */
struct NHelioBrowserCreateInfo
{
    QString id;
    QString name;
    IHelioBrowserPageFactory* pageFactory = nullptr; //!< not owned; lives as long as the page
    int browserType = 0;
};

/** A page that shows a browser. */
class NHelioBrowserPageRoot : public NHelioAppPage
{
    Q_OBJECT
public:
    explicit NHelioBrowserPageRoot(QWidget* parent = nullptr);

    NHelioBrowserCreator* browserCreator() { return &m_creator; }
    const NHelioBrowserCreator* browserCreator() const { return &m_creator; }

private:
    NHelioBrowserCreator m_creator;
};
