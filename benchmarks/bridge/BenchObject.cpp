#include "BenchObject.h"

#include "BarePage.h"

void BenchObject::ping(NxWebViewJSContext& context)
{
    context.reply()["text"] = context.getValue(QStringLiteral("text")).toString().toStdString();
}

void BenchObject::produce(NxWebViewJSContext& context)
{
    context.reply()["text"] = sampleText(context.getValue(QStringLiteral("size")).toInt()).toStdString();
}
