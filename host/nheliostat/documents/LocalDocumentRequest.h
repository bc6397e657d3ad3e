#pragma once

#include <QMap>
#include <QString>
#include <QVariantMap>

/** Which file of the cloud is opened as a local document, and where. */
struct LocalDocumentRequest
{
    QString fileId;
    QString historyId; //!< a version of the file; empty for the current one
    QString fileName;  //!< what to call it until its name is known; no path
    bool newTab = false;

    /** From the keys of NHelioCloudFilesMgr::downloadAndOpen; ids may be numbers. */
    static LocalDocumentRequest fromParameters(const QVariantMap& parameters);

    /** Whether the id can name a file of the cloud: letters, digits, "-" and "_", but not "-1". */
    bool namesFile() const;
    /** Whether the keys "fileId" and "historyid" name this very document. */
    bool isNamedBy(const QMap<QString, QString>& parameters) const;
};
