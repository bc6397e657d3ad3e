#pragma once

#include "nheliostat/NHelioBrowserPageRoot.h"

#include <QUrl>

class ShellBrowserSubPage;

/** A page that shows any web address, with a toolbar. */
class ShellBrowserPage final : public NHelioBrowserPageRoot
{
    Q_OBJECT
public:
    /** The widget type it is registered under. */
    static constexpr int type = 11;

    explicit ShellBrowserPage(QWidget* parent = nullptr);

    int widgetType() const override { return type; }
    QString pageTitle() const override;
    NHelioSubPage* createSubPage(NHelioSubPages* subPages) override;
    /** The address to show; a text that is no web address changes nothing. A page that is loaded goes there.
     */
    void notify(const QString& text) override;
    /** Takes the address of the first item. */
    bool recoverFiles(const QList<NHelioWorkAreaRecoverItem>& items, int strategy,
                      NHelioSubPage* subPage) override;
    void load() override;

    Q_INVOKABLE void refreshPage();
    Q_INVOKABLE QString getCurrentUrl() const;

private:
    void onBrowserCreated(NHelioBrowserWidgetBase* browser);
    void onTitleChanged(const QString& title);
    void closePage();
    void showUrl();

    QPointer<NHelioBrowserWidgetBase> m_browser;
    QPointer<ShellBrowserSubPage> m_subPage;
    QUrl m_url;
    bool m_loaded = false;
};
