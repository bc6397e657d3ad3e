#pragma once

#include "nheliostat/BrowserFactory.h"
#include "nheliostat/framework/ShellApplication.h"
#include "nheliostat/framework/ShellMainWindow.h"
#include "nrt/NrtHost.h"
#include "support/FakeBrowserWidget.h"
#include "zeolite/ZeoliteHost.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <memory>

/** A shell with real services over a temporary directory, whose browsers are widgets without Chromium. */
class ShellFixture : public testing::Test
{
protected:
    void SetUp() override
    {
        runtime.dataDir = directory.path();
        runtime.resourceRoot = directory.filePath(QStringLiteral("res"));
        runtime.applicationName = QStringLiteral("app");
        runtime.applicationVersion = QStringLiteral("1.2");
        runtime.channel = QStringLiteral("chan");
        for (const char* key : {"quill", "quill_api", "quill_api_spec"})
            services.domains.insert(QLatin1String(key), QStringLiteral("https://docs.test"));
        services.domains.insert(QStringLiteral("drive"), QStringLiteral("https://drive.test"));
        nheliostat::host::setBrowserFactory(
            [](QWidget* parent, const QString& id, const QString& name) -> NHelioBrowserWidgetBase* {
                return new FakeBrowserWidget(parent, id, name);
            });
    }

    /** Starts the shell with what the test put into `runtime` and `services`. */
    void start()
    {
        nrt::host::configure(runtime);
        host = std::make_unique<ZeoliteHost>(services);
        shell = std::make_unique<ShellApplication>(ShellApplication::Setup{});
        window = shell->openMainWindow();
    }

    void TearDown() override
    {
        shell.reset();
        host.reset();
        nheliostat::host::setBrowserFactory({});
    }

    /** A package of text documents that says it is of that version. Returns its directory. */
    QString makePackage(const char* version)
    {
        const QString path = directory.filePath(QStringLiteral("word-") + QLatin1String(version));
        QDir().mkpath(path);
        QFile file(path + QStringLiteral("/version"));
        file.open(QIODevice::WriteOnly);
        file.write(version);
        return path;
    }

    static void turn()
    {
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
    }

    QTemporaryDir directory;
    nrt::host::Setup runtime;
    zeolite::Setup services;
    std::unique_ptr<ZeoliteHost> host;
    std::unique_ptr<ShellApplication> shell;
    ShellMainWindow* window = nullptr;
};
