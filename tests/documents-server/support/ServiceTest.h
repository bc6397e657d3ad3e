#pragma once

#include <gmock/gmock.h>

#include <QJsonDocument>
#include <QJsonObject>

#include "service/DocumentsService.h"
#include "support/TemporarySite.h"

namespace documents {

inline QByteArray header(const HttpReply& reply, const QByteArray& name)
{
    for (const auto& field : reply.headers) {
        if (field.first == name)
            return field.second;
    }
    return {};
}

/** The service over a temporary directory, asked without sockets. */
class ServiceTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_FALSE(store.open()); }

    Answer ask(const QByteArray& method, const QByteArray& target, const QByteArray& body = {})
    {
        HttpRequest request;
        request.method = method;
        request.target = target;
        request.body = body;
        request.cookie = cookie;
        return service.answer(request);
    }
    static QJsonObject json(const Answer& answer)
    {
        return QJsonDocument::fromJson(answer.reply.body).object();
    }
    static std::string text(const Answer& answer, const char* member)
    {
        return json(answer).value(QLatin1String(member)).toString().toStdString();
    }

    TemporarySite place;
    const qint64 now = 1'700'000'000'000;
    const Clock clock = [this] { return now; };
    DocumentStore store{place.documents(), clock};
    Drive drive{place.path("drive"), clock};
    LinkShaper shaper;
    RequestLog log;
    DocumentsService service{store, drive, place.site(), place.packages(), clock, shaper, log};
    QByteArray cookie = "vlt_sid=anna";
};

} // namespace documents
