#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <variant>

/** JSON-RPC 2.0, one message a line: texts to values and back. Any thread. */
namespace shell::rpc {

enum ErrorCode {
    ParseError = -32700,
    InvalidRequest = -32600,
    MethodNotFound = -32601,
    InvalidParams = -32602,
    OperationFailed = -32000 //!< the call was understood; what it asked for did not work
};

/** Why a call has no result. */
struct Failure
{
    int code = OperationFailed;
    QString message;
};

/** What became of a call. */
using Outcome = std::variant<QJsonValue, Failure>;

struct Request
{
    QJsonValue id;     //!< undefined when the caller wants no response
    QString method;    //!< may be unknown
    QJsonValue params; //!< undefined when there are none

    bool wantsResponse() const { return !id.isUndefined(); }
};

/** A line that is no request: the failure, and the id to answer with (null when it could not be told). */
struct BadLine
{
    QJsonValue id;
    Failure failure;
};

/** Reads a line, without its end. */
std::variant<Request, BadLine> parseLine(const QByteArray& line);

/** A response line with its end. An id that is undefined is written as null. */
QByteArray responseLine(const QJsonValue& id, const Outcome& outcome);
/** A notification line with its end. */
QByteArray notificationLine(const QString& method, const QJsonObject& params);

} // namespace shell::rpc
