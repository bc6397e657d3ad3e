#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "http/HttpMessage.h"
#include "service/FrontVersions.h"
#include "store/DocumentStore.h"

namespace documents {

/** The reply that a failed operation of the store gives: {"result", "msg"} under the status that fits. */
HttpReply failureReply(const Error& error);

/** The documents API: every operation turns a request's parts into a finished JSON reply. For one thread. */
class DocumentsApi
{
public:
    /** Both are kept by reference and outlive the API. */
    DocumentsApi(DocumentStore& store, const FrontVersions& versions);

    /** All documents:
     * {"result":"ok","files":[{"id","name","officeType","suffix","version","modified","size"}]}. */
    HttpReply list() const;

    /** {"officeType", "name"?} → {"result":"ok","id","name","officeType"}. */
    HttpReply create(const QByteArray& body);

    /** {"front_ver"?, "connid"?} → {"result":"ok","window.__VLTENV__":{…},"content":{…}}. */
    HttpReply preopen(const QString& id, const QString& package, const HttpRequest& request) const;

    /** {"base_version","content"} → {"result":"ok","file_version"}; 409 with the version in force. */
    HttpReply save(const QString& id, const QByteArray& body);

    /** An object with one member for each known part asked for; no parts: all but "ssr". */
    HttpReply officeConfig(const QString& id, const QStringList& parts, const HttpRequest& request) const;

    /** {"client_version","office_type"}. */
    HttpReply versionCheck(const QString& id) const;

    /** [{"office_type": package, …}] → {"result":"ok","data":[…]} with an entry for each known package. */
    HttpReply packageInfo(const QByteArray& body) const;

private:
    FrontVersion frontVersionOf(const Document& document) const;

    DocumentStore& m_store;
    const FrontVersions& m_versions;
};

} // namespace documents
