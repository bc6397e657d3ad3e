#include "service/UploadApi.h"

#include <QJsonObject>

#include "drive/DriveNames.h"
#include "http/Replies.h"
#include "service/DocumentsApi.h"
#include "service/DriveJson.h"
#include "service/JsonBody.h"

namespace documents {
namespace {

Error invalid(const QString& text)
{
    return {ErrorCode::Invalid, text};
}

/** "0" when the member is missing. */
std::optional<qint64> idMember(const QJsonObject& object, const char* name)
{
    const QJsonValue value = object.value(QLatin1String(name));
    return value.isUndefined() ? std::optional<qint64>(0) : driveId(value.toString());
}

Result<UploadOrder> parseOrder(const QByteArray& body)
{
    const auto object = parseObject(body);
    if (!object)
        return object.error();
    const auto group = idMember(*object, "groupid");
    const auto parent = idMember(*object, "parentid");
    const auto file = idMember(*object, "fileid");
    const auto size = wholeNumber(object->value(QLatin1String("size")));
    const QString sha1 = object->value(QLatin1String("sha1")).toString();
    if (!group || !parent || !file)
        return invalid(QStringLiteral("\"groupid\", \"parentid\" and \"fileid\" must be decimal texts."));
    if (!size || *size < 0)
        return invalid(QStringLiteral("\"size\" must be a whole number."));
    if (!isSha1(sha1))
        return invalid(QStringLiteral("\"sha1\" must be 40 lower-case hexadecimal digits."));
    const FileTarget target{*group, *parent, *file, object->value(QLatin1String("name")).toString()};
    return UploadOrder{target, {sha1, *size}};
}

QString idText(qint64 id)
{
    return QString::number(id);
}

HttpReply stateReply(int status, const UploadState& state)
{
    return jsonReply(status, {{QStringLiteral("uploadid"), idText(state.id)},
                              {QStringLiteral("offset"), state.offset},
                              {QStringLiteral("size"), state.size}});
}

/** A conflict tells where the upload stands. */
HttpReply refusalReply(const Error& error, DriveUploads& uploads, qint64 id)
{
    const auto state = error.code == ErrorCode::Conflict ? uploads.state(id) : Result<UploadState>(error);
    if (!state)
        return failureReply(error);
    return jsonReply(409, {{QStringLiteral("result"), QStringLiteral("Conflict")},
                           {QStringLiteral("msg"), error.text},
                           {QStringLiteral("offset"), state->offset}});
}

class UploadSink final : public BodySink
{
public:
    UploadSink(DriveUploads& uploads, qint64 id, std::shared_ptr<DriveUploads::Writer> writer)
        : m_uploads(uploads)
        , m_id(id)
        , m_writer(std::move(writer))
    {
    }

    bool take(const char* data, std::size_t size) override
    {
        m_failure = m_writer->write(data, static_cast<qint64>(size));
        return !m_failure;
    }

    Answer finish() override
    {
        if (m_failure)
            return {refusalReply(*m_failure, m_uploads, m_id)};
        return {jsonReply(200, {{QStringLiteral("offset"), m_writer->offset()}})};
    }

private:
    DriveUploads& m_uploads;
    qint64 m_id;
    std::shared_ptr<DriveUploads::Writer> m_writer;
    Failure m_failure;
};

} // namespace

UploadApi::UploadApi(DriveUploads& uploads)
    : m_uploads(uploads)
{
}

HttpReply UploadApi::start(const QByteArray& body)
{
    const auto order = parseOrder(body);
    if (!order)
        return failureReply(order.error());
    const auto started = m_uploads.start(*order);
    return started ? stateReply(started->isNew ? 201 : 200, *started) : failureReply(started.error());
}

HttpReply UploadApi::state(qint64 id)
{
    const auto state = m_uploads.state(id);
    return state ? stateReply(200, *state) : failureReply(state.error());
}

Reception UploadApi::receive(qint64 id, const RequestTarget& target)
{
    Reception reception;
    const auto offset = driveId(target.queryValue(QStringLiteral("offset")));
    if (!offset) {
        reception.refusal =
            Answer{failureReply(invalid(QStringLiteral("\"offset\" must be a whole number.")))};
        return reception;
    }
    const auto writer = m_uploads.write(id, *offset);
    if (writer) {
        reception.limit = static_cast<std::uint64_t>((*writer)->missing());
        reception.sink = std::make_unique<UploadSink>(m_uploads, id, *writer);
    } else {
        reception.refusal = Answer{refusalReply(writer.error(), m_uploads, id)};
    }
    return reception;
}

Answer UploadApi::finish(qint64 id)
{
    const auto finish = m_uploads.finish(id);
    if (!finish)
        return {refusalReply(finish.error(), m_uploads, id)};
    Answer answer;
    answer.work = [step = *finish]() -> std::optional<HttpReply> {
        const auto item = step();
        return item ? std::optional<HttpReply>(itemReply(*item)) : std::nullopt;
    };
    return answer;
}

HttpReply UploadApi::cancel(qint64 id)
{
    if (const Failure failure = m_uploads.cancel(id))
        return failureReply(*failure);
    return jsonReply(200, {{QStringLiteral("result"), QStringLiteral("ok")}});
}

} // namespace documents
