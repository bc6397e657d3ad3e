#pragma once

#include <string>
#include <vector>

#include <QJsonObject>

#include "support/HttpClient.h"

namespace documents {

/** Speaks the drive's API for group 0 over a connection, which is kept by reference. */
class DriveClient
{
public:
    struct Order
    {
        std::string parent, file, name, bytes;
    };
    struct Upload
    {
        std::string id;
        std::size_t offset = 0;
        unsigned status = 0;
    };

    explicit DriveClient(HttpClient& client)
        : m_client(client)
    {
    }

    /** The target is below the drive's address. */
    Response ask(const std::string& method, const std::string& target, const std::string& body = {},
                 const std::string& fields = {});
    QJsonObject json(const std::string& method, const std::string& target, const std::string& body = {});

    /** The name is escaped and may be followed by more of the query. */
    Response put(const std::string& folderId, const std::string& bytes, const std::string& name);
    Response upload(const std::string& id, std::size_t offset, const std::string& bytes);
    Upload startUpload(const Order& order);
    std::string makeFolder(const std::string& parent, const std::string& name);

    static std::string folder(const std::string& id) { return "/groups/0/folders/" + id; }
    /** Of the item in a reply. */
    static std::string id(const Response& reply);
    std::vector<std::string> names(const std::string& folderId);

private:
    HttpClient& m_client;
};

} // namespace documents
