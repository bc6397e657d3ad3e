#pragma once

#include <QString>
#include <QVariantMap>

class NxWebViewJSContext;

/** What a script gives to open a file of the cloud, with the defaults of what it leaves out. */
struct OpenArguments
{
    static OpenArguments read(const NxWebViewJSContext& context);

    /** The line that the log gets of the call. */
    QString logText() const;
    /** The tag under which the open is counted. */
    QString sourceTag() const { return QStringLiteral("clouddriver_%1").arg(csource); }
    /** What the shell's files manager is told of the file. */
    QVariantMap openParameters() const;
    /** Whether the document takes the place of the page that opens it. */
    bool staysInTab() const;

    QString fileId;
    QString fileName;
    QString fullPath;
    bool isCloudFile = false;
    QString openSrc;
    QString csource;
    QString from;
    QString openFrom;
    bool openByNewTab = false;
    bool supportNoLand = false;
    QString pageIdxInfo;
};

/** The number (NHelioCollectInfoHelper::VIRTUAL_TYPE) of the part of the drive that "openSrc" names. */
int virtualTypeOf(const QString& openSrc);
