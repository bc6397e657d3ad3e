#pragma once

#include <QJsonObject>

class NHelioAppPage;
class ShellApplication;

namespace shell {

class PageDirectory;

/**
 * What page.state answers: "type", "title", "url" (the browser's), "notifyUrl", "loaded", "released",
 * "current", "window" (its index, null for none) and "properties" (the dynamic ones).
 */
QJsonObject pageState(NHelioAppPage& page, const ShellApplication& application, const PageDirectory& pages);

/**
 * What shell.state answers: "windows", each {"title", "currentPage" (id or null), "tabs": [{"page",
 * "title"}], "pages": [id]}, in order, and "otherWindows", each {"name", "title"}: those beside them that are
 * in sight.
 */
QJsonObject shellState(const ShellApplication& application, const PageDirectory& pages);

} // namespace shell
