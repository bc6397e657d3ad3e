#pragma once

#include <QByteArray>

#include <json/value.h>
#include <json/writer.h>

#include <memory>
#include <sstream>

/** Whether a reply object holds "ignoreThisJsCallback" = "true": it is not to be delivered. */
bool isWithheld(const Json::Value& reply);

/** Writes reply objects as compact JSON, UTF-8. Kept between replies because making the writer costs more
 * than using it. */
class ReplyWriter
{
public:
    ReplyWriter();

    QByteArray write(const Json::Value& reply);

private:
    std::unique_ptr<Json::StreamWriter> m_writer;
    std::ostringstream m_stream;
};
