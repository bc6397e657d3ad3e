#include "bridge/OpenArguments.h"

#include "nheliostat/NHelioApplication.h"
#include "zeolite/NxWebViewJSContext.h"

#include <array>
#include <utility>

namespace {

QString text(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

} // namespace

OpenArguments OpenArguments::read(const NxWebViewJSContext& context)
{
    const auto textOf = [&](const char* key, const char* fallback = "") {
        return context.getValue(QLatin1String(key), QLatin1String(fallback)).toString();
    };
    const auto flagOf = [&](const char* key) { return context.getValue(QLatin1String(key), false).toBool(); };
    OpenArguments arguments;
    arguments.fileId = textOf("fileid", "-1");
    arguments.fileName = textOf("fileName");
    arguments.fullPath = textOf("fullPath");
    arguments.isCloudFile = flagOf("isCloudFile");
    arguments.openSrc = textOf("openSrc");
    arguments.csource = textOf("csource");
    arguments.from = textOf("from", "clouddriver");
    arguments.openFrom = textOf("openFrom");
    arguments.openByNewTab = flagOf("openByNewTab");
    arguments.supportNoLand = flagOf("supportNoLand");
    arguments.pageIdxInfo = textOf("pageIdxInfo");
    return arguments;
}

QString OpenArguments::logText() const
{
    // One pass: a text of the script that holds "%1" stays as it is.
    return QStringLiteral("openFile fileId:%1 fileName:%2 fullPath:%3 isCloudFile:%4 openSrc:%5 csource:%6 "
                          "from:%7 openByNewTab:%8 supportNoLand:%9")
        .arg(fileId, fileName, fullPath, text(isCloudFile), openSrc, csource, from, text(openByNewTab),
             text(supportNoLand));
}

QVariantMap OpenArguments::openParameters() const
{
    return {{QStringLiteral("fileid"), fileId},
            {QStringLiteral("fileName"), fileName},
            {QStringLiteral("doctype"), openSrc},
            {QStringLiteral("csource"), sourceTag()},
            {QStringLiteral("from"), from}};
}

bool OpenArguments::staysInTab() const
{
    return openFrom.compare(QLatin1String("rightmenu"), Qt::CaseInsensitive) != 0 && !openByNewTab;
}

int virtualTypeOf(const QString& openSrc)
{
    using namespace NHelioCollectInfoHelper;
    static constexpr std::array<std::pair<const char*, VIRTUAL_TYPE>, 5> types = {
        {{"All", All}, {"Mine", All}, {"Team", Team}, {"Device", Device}, {"Received", Received}}};
    for (const auto& [name, type] : types) {
        if (openSrc.compare(QLatin1String(name), Qt::CaseInsensitive) == 0)
            return type;
    }
    return Unknown;
}
