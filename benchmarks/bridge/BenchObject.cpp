#include "BenchObject.h"

void BenchObject::ping(NxWebViewJSContext& context)
{
    context.reply()["text"] = context.getValue(QStringLiteral("text")).toString().toStdString();
}

void BenchObject::produce(NxWebViewJSContext& context)
{
    context.reply()["text"] = std::string(context.getValue(QStringLiteral("size")).toUInt(), 'x');
}
