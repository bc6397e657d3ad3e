#pragma once

#include <memory>
#include <string>

#include <boost/asio/io_context.hpp>

#include <QByteArray>

#include "ServerOptions.h"
#include "store/DocumentStore.h"
#include "store/Result.h"

namespace documents {

/**
 * The running server: documents, service and the two listeners, all on one io_context that one thread runs.
 * Destroy it only when that thread has stopped running the context.
 */
class DocumentsServer
{
public:
    /**
     * Opens the documents and the log and listens on both ports of 127.0.0.1; the context is kept by
     * reference. Null with `errorText` when something of that is not to be had.
     */
    static std::unique_ptr<DocumentsServer>
    start(boost::asio::io_context& context, const ServerOptions& options, Clock clock, QString* errorText);
    ~DocumentsServer();

    unsigned short httpPort() const;
    unsigned short httpsPort() const;

    /** The certificate made at start, as PEM text, for clients that want to check it. */
    std::string certificatePem() const;

    /** {"http":port,"https":port}, one line with its end. */
    QByteArray readyLine() const;

private:
    struct Parts;
    explicit DocumentsServer(std::unique_ptr<Parts> parts);

    std::unique_ptr<Parts> m_parts;
};

} // namespace documents
