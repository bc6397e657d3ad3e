#pragma once

#include "nheliostat/NHelioBrowserPageRoot.h"

#include <functional>

class NxWebViewContainer;

/** What a test has the library "ncefpreload" do; set with the library's export "useHooks". */
struct FakePreloadHooks
{
    std::function<bool(const QString& name)> create = [](const QString&) { return true; };
    std::function<bool(QWidget* page, NHelioBrowserCreator* creator)> handOver;
    std::function<bool(NxWebViewContainer* container)> takeBack = [](NxWebViewContainer*) { return false; };
    QStringList calls; //!< function and container name
};

using UseFakePreloadHooks = void (*)(FakePreloadHooks* hooks);
