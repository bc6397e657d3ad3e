#pragma once

#include <functional>

class NHelioBrowserWidgetBase;
class QString;
class QWidget;

namespace nheliostat::host {

/** Makes a browser widget with this parent (its owner), id and name. */
using BrowserFactory =
    std::function<NHelioBrowserWidgetBase*(QWidget* parent, const QString& id, const QString& name)>;

/**
 * What CreateHelioBrowserWidget makes its browsers with. An empty function makes none: the creators then
 * never hear. A widget without Chromium takes the browser's place in unit tests this way.
 */
void setBrowserFactory(BrowserFactory factory);

} // namespace nheliostat::host
