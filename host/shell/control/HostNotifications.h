#pragma once

#include <QObject>

class NHelioBrowserWidgetBase;
class ZeoliteHost;
struct GatewayRequestRecord;

namespace shell {

class LineWriter;
class PageDirectory;

/**
 * Writes what happens in the shell as notifications, in order: "event", "log", "request" and "page". Made and
 * destroyed on the user-interface thread, while the services live.
 */
class HostNotifications final : public QObject
{
    Q_OBJECT
public:
    HostNotifications(ZeoliteHost& services, PageDirectory& pages, LineWriter& output,
                      QObject* parent = nullptr);
    ~HostNotifications() override;

    /** `browser` may be null: a request of no page. */
    void onRequestFinished(NHelioBrowserWidgetBase* browser, const GatewayRequestRecord& record);

private:
    void onPageHappened(int id, const QString& what);

    ZeoliteHost& m_services;
    PageDirectory& m_pages;
    LineWriter& m_output;
    int m_eventObserver;
    int m_logSink;
};

} // namespace shell
