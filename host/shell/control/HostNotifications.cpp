#include "shell/control/HostNotifications.h"

#include "shell/control/LineWriter.h"
#include "shell/control/RpcMessage.h"
#include "shell/pages/PageDirectory.h"

#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nheliostat/gateway/RequestGateway.h"
#include "zeolite/ZeoliteHost.h"

namespace shell {

namespace {

QString answeredBy(GatewayRequestRecord::AnsweredBy by)
{
    switch (by) {
    case GatewayRequestRecord::AnsweredBy::Local:
        return QStringLiteral("local");
    case GatewayRequestRecord::AnsweredBy::Network:
        return QStringLiteral("network");
    case GatewayRequestRecord::AnsweredBy::Refused:
        break;
    }
    return QStringLiteral("refused");
}

/** The browser's first request on a connection is asked for the gateway's credentials; it then comes again.
 */
bool isCredentialsQuestion(const GatewayRequestRecord& record)
{
    return record.by == GatewayRequestRecord::AnsweredBy::Refused && record.status == 407;
}

QByteArray logLine(LogLevel level, const QString& tag, const QString& text)
{
    return rpc::notificationLine(QStringLiteral("log"), {{QStringLiteral("level"), logLevelName(level)},
                                                         {QStringLiteral("tag"), tag},
                                                         {QStringLiteral("text"), text}});
}

} // namespace

HostNotifications::HostNotifications(ZeoliteHost& services, PageDirectory& pages, LineWriter& output,
                                     QObject* parent)
    : QObject(parent)
    , m_services(services)
    , m_pages(pages)
    , m_output(output)
{
    // Both are called on the thread that logs or posts; the writer takes lines from any.
    m_eventObserver = services.dataCollection().addObserver([&output](const DcEvent& event) {
        output.write(rpc::notificationLine(QStringLiteral("event"), event.toJson()));
    });
    m_logSink = services.log().addSink([&output](LogLevel level, const QString& tag, const QString& text) {
        output.write(logLine(level, tag, text));
    });
    connect(&pages, &PageDirectory::happened, this, &HostNotifications::onPageHappened);
}

HostNotifications::~HostNotifications()
{
    m_services.log().removeSink(m_logSink);
    m_services.dataCollection().removeObserver(m_eventObserver);
}

void HostNotifications::onRequestFinished(NHelioBrowserWidgetBase* browser,
                                          const GatewayRequestRecord& record)
{
    if (isCredentialsQuestion(record))
        return;
    const int page = m_pages.idOfPageAround(browser);
    m_output.write(rpc::notificationLine(
        QStringLiteral("request"), {{QStringLiteral("page"), page ? QJsonValue(page) : QJsonValue()},
                                    {QStringLiteral("method"), QString::fromLatin1(record.method)},
                                    {QStringLiteral("url"), QString::fromLatin1(record.url.toEncoded())},
                                    {QStringLiteral("by"), answeredBy(record.by)},
                                    {QStringLiteral("status"), record.status},
                                    {QStringLiteral("bytes"), record.bytes},
                                    {QStringLiteral("ms"), record.ms}}));
}

void HostNotifications::onPageHappened(int id, const QString& what)
{
    m_output.write(rpc::notificationLine(QStringLiteral("page"),
                                         {{QStringLiteral("page"), id}, {QStringLiteral("what"), what}}));
}

} // namespace shell
