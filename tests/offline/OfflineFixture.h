#pragma once

#include "support/LogRecorder.h"
#include "support/ServicesFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

/** The real services and a front-end package in the temporary directory. */
class OfflineFixture : public ServicesFixture
{
protected:
    void SetUp() override
    {
        ServicesFixture::SetUp();
        services.domains.insert(QStringLiteral("quill_api"), QStringLiteral("https://docs.test:8443"));
        start();
        package = directory.filePath(QStringLiteral("package"));
    }

    /** Writes a file whose path is relative to the temporary directory. */
    QString write(const char* name, const QByteArray& bytes) const
    {
        const QString path = directory.filePath(QLatin1String(name));
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << name;
        file.write(bytes);
        return path;
    }

    bool hasLogged(const QString& text) const { return !log.lines().filter(text).isEmpty(); }

    QString package;
    LogRecorder log;
};
