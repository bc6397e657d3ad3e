#include "zeolite/NPlugin.h"

QString NPlugin::convertState(State state)
{
    switch (state) {
    case NotLoaded:
        return QStringLiteral("not loaded");
    case Loading:
        return QStringLiteral("loading");
    case LoadFailed:
        return QStringLiteral("load failed");
    case Loaded:
        return QStringLiteral("loaded");
    }
    return {};
}
