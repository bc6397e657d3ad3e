#pragma once

#include <QString>

/** Moves local storage packages between this machine and the documents server; the page does. */
class IStorageTransferHost
{
public:
    virtual ~IStorageTransferHost() = default;

    /** The server's reply reaches the page's bridge. */
    virtual void uploadPackage(const QString& url, const QString& packageInfo, const QString& zipPath) = 0;
    virtual void downloadPackage(const QString& url, const QString& savePath) = 0;
};
