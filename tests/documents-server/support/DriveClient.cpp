#include "support/DriveClient.h"

#include <QJsonArray>
#include <QJsonDocument>

#include "drive/Sha1.h"

namespace documents {
namespace {

QJsonObject parse(const Response& reply)
{
    return QJsonDocument::fromJson(QByteArray::fromStdString(reply.body())).object();
}

std::string text(const QJsonObject& object, const char* member)
{
    return object.value(QLatin1String(member)).toString().toStdString();
}

} // namespace

Response DriveClient::ask(const std::string& method, const std::string& target, const std::string& body,
                          const std::string& fields)
{
    return m_client.ask(method, "/api/v1/drive" + target, body, fields);
}

QJsonObject DriveClient::json(const std::string& method, const std::string& target, const std::string& body)
{
    return parse(ask(method, target, body));
}

Response DriveClient::put(const std::string& folderId, const std::string& bytes, const std::string& name)
{
    return ask("PUT", folder(folderId) + "/files?name=" + name, bytes);
}

Response DriveClient::upload(const std::string& id, std::size_t offset, const std::string& bytes)
{
    return ask("PUT", "/uploads/" + id + "?offset=" + std::to_string(offset), bytes);
}

DriveClient::Upload DriveClient::startUpload(const Order& order)
{
    const std::string sha1 = Sha1::of(QByteArray::fromStdString(order.bytes)).toStdString();
    const Response reply = ask("POST", "/uploads",
                               R"({"groupid":"0","parentid":")" + order.parent + R"(","fileid":")" +
                                   order.file + R"(","name":")" + order.name + R"(","size":)" +
                                   std::to_string(order.bytes.size()) + R"(,"sha1":")" + sha1 + "\"}");
    const QJsonObject state = parse(reply);
    return {text(state, "uploadid"),
            static_cast<std::size_t>(state.value(QLatin1String("offset")).toDouble(-1)), reply.result_int()};
}

std::string DriveClient::makeFolder(const std::string& parent, const std::string& name)
{
    return id(ask("POST", "/groups/0/folders", R"({"parentid":")" + parent + R"(","name":")" + name + "\"}"));
}

std::string DriveClient::id(const Response& reply)
{
    return text(parse(reply), "id");
}

std::vector<std::string> DriveClient::names(const std::string& folderId)
{
    std::vector<std::string> names;
    const QJsonArray items = json("GET", folder(folderId)).value(QLatin1String("items")).toArray();
    for (const QJsonValue item : items)
        names.push_back(text(item.toObject(), "name"));
    return names;
}

} // namespace documents
