#pragma once

#include <QMap>
#include <QObject>
#include <QPointer>
#include <QString>

class NHelioAppPage;
class NHelioBrowserWidgetBase;

namespace shell {

/** The browser widget that a page shows; null when it has none yet. */
NHelioBrowserWidgetBase* browserOf(const NHelioAppPage* page);

/** Says what happens to one page and to the browser that it gets sooner or later. User-interface thread. */
class PageWatch final : public QObject
{
    Q_OBJECT
public:
    PageWatch(int id, NHelioAppPage* page);

    int id() const { return m_id; }
    NHelioAppPage* page() const;
    /** The page's address, to compare with: also while the page is being destroyed. */
    const QObject* watched() const { return m_watched; }

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    /** `what`: "titleChanged", "loadFinished" or "webFileReady". */
    void happened(int id, const QString& what);

private:
    /** Follows the page's browser once it is there. */
    void findBrowser();
    void onTitleChanged();
    void onLoadFinished();
    void onWebFileReady();

    int m_id;
    QPointer<NHelioAppPage> m_page;
    const QObject* m_watched;
    QPointer<NHelioBrowserWidgetBase> m_browser;
};

} // namespace shell
