#include "page/OpenEvents.h"

#include "nheliostat/NHelioApplication.h"
#include "page/DocsUrl.h"
#include "zeolite/JsonHelper.h"
#include "zeolite/NCoreApplication.h"

namespace openevents {
namespace {

constexpr qint64 nsPerMs = 1000000;

QString boolText(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

NDcInfoC* collection()
{
    NCoreApplication* core = NHelioApplication::instance() ? NCoreApplication::instance() : nullptr;
    return core ? core->getDcInfo() : nullptr;
}

qint64 prepareTime(const OpenTime& event, const QUrl& url)
{
    const QString start = docsurl::queryValue(url, QStringLiteral("startTime"));
    if (start.isEmpty())
        return 0;
    const qint64 interrupted = docsurl::queryValue(url, QStringLiteral("interruptUseTime")).toLongLong();
    return event.loadStartMs - interrupted - start.toLongLong();
}

} // namespace

NDcFields precreateFields(const Precreate& event)
{
    return {{QStringLiteral("entry"), event.entry},
            {QStringLiteral("init"), boolText(event.init)},
            {QStringLiteral("used"), boolText(event.used)},
            {QStringLiteral("trace_id"), event.traceId},
            {QStringLiteral("office_type"), event.officeType},
            {QStringLiteral("elapsed"), QString::number(event.elapsedMs)}};
}

NDcFields openStepFields(const OpenStep& event)
{
    return {{QStringLiteral("step"), event.step},
            {QStringLiteral("trace_id"), event.traceId},
            {QStringLiteral("notify_url"), event.notifyUrl},
            {QStringLiteral("is_loaded"), boolText(event.loaded)},
            {QStringLiteral("is_pre_pinited"), boolText(event.preInited)},
            {QStringLiteral("office_type"), event.officeType},
            {QStringLiteral("error_code"), QString::number(event.errorCode)},
            {QStringLiteral("error_msg"), event.errorMessage},
            {QStringLiteral("browser_url"), event.browserUrl}};
}

NDcFields openTimeFields(const OpenTime& event)
{
    NDcFields fields;
    QString names;
    QJsonObject list;
    for (const NOpenSteps::Step& step : event.steps->all()) {
        const QString milliseconds = QString::number(step.second);
        fields.insert(step.first, milliseconds);
        names += step.first + QLatin1Char(';');
        list.insert(step.first, milliseconds);
    }
    const QUrl url(event.notifyUrl);
    fields.insert(QStringLiteral("prepare_time"), QString::number(prepareTime(event, url)));
    fields.insert(QStringLiteral("steps"), names);
    fields.insert(QStringLiteral("from"), docsurl::queryValue(url, QStringLiteral("from")));
    fields.insert(QStringLiteral("office_type"), event.officeType);
    fields.insert(QStringLiteral("trace_id"), event.traceId);
    fields.insert(QStringLiteral("notify_url"), event.notifyUrl);
    fields.insert(QStringLiteral("step_list"), JsonHelper::convertQJsonToString(list));
    return fields;
}

NDcFields performanceFields(const QVector<qint64>& points, qint64 nowNs)
{
    const auto milliseconds = [](qint64 ns) { return QString::number(ns / nsPerMs); };
    return {{QStringLiteral("prepare_time"), milliseconds(points.at(1) - points.at(0))},
            {QStringLiteral("create_browser_time"), milliseconds(points.at(2) - points.at(1))},
            {QStringLiteral("navigate_time"), milliseconds(nowNs - points.at(2))}};
}

void post(const QString& name, const NDcFields& fields, int probability)
{
    if (NDcInfoC* info = collection())
        info->postGeneralEvent(name, fields, 0, 0, probability, true);
}

void postCrashInfo(int openSubPages)
{
    const NDcOrderedFields fields{{QStringLiteral("olcount"), QString::number(openSubPages)}};
    if (NDcInfoC* info = collection())
        info->postGeneralEvent(QStringLiteral("perf_split_cef_crashbrowserinfo"), fields, 0, 0, 1);
}

} // namespace openevents
