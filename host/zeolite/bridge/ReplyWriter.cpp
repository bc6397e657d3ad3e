#include "zeolite/bridge/ReplyWriter.h"

bool isWithheld(const Json::Value& reply)
{
    if (!reply.isObject())
        return false;
    const Json::Value& mark = reply["ignoreThisJsCallback"];
    return mark.isString() && mark.asString() == "true";
}

ReplyWriter::ReplyWriter()
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    m_writer.reset(builder.newStreamWriter());
}

QByteArray ReplyWriter::write(const Json::Value& reply)
{
    m_stream.str({});
    m_writer->write(reply, &m_stream);
    return QByteArray::fromStdString(m_stream.str());
}
