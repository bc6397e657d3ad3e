#pragma once

#include <QByteArray>

#include <json/value.h>

/** Whether a reply object holds "ignoreThisJsCallback" = "true": it is not to be delivered. */
bool isWithheld(const Json::Value& reply);

/**
 * The reply object as compact JSON, UTF-8. Texts are copied in runs between the characters that JSON escapes:
 * replies hold texts of many megabytes. Text that is no UTF-8 is passed on as it is.
 */
QByteArray writeReply(const Json::Value& reply);
