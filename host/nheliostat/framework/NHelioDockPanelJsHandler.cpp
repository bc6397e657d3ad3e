#include "nheliostat/NHelioCommonJSAPI.h"

#include "nheliostat/framework/ScriptReply.h"

void NHelioDockPanelJsHandler::notifyPageLoadFinished(bool ok)
{
    m_loaded = ok;
}

void NHelioDockPanelJsHandler::updateWebFileInfo(const QMap<QString, QString>& info)
{
    m_fileInfo = info;
}

void NHelioDockPanelJsHandler::getPageInfo(NxWebViewJSContext& context)
{
    Json::Value fileInfo(Json::objectValue);
    for (auto entry = m_fileInfo.cbegin(); entry != m_fileInfo.cend(); ++entry)
        fileInfo[entry.key().toStdString()] = entry.value().toStdString();
    nheliostat::scriptreply::succeed(context);
    context.reply()["loaded"] = m_loaded;
    context.reply()["fileInfo"] = fileInfo;
}
