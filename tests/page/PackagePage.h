#pragma once

#include "page/NHelioCloudDocsPage.h"

#include "base/NReadOnce.h"
#include "proxy/NCloudDocsRecordManager.h"
#include "support/HttpStub.h"
#include "support/LogRecorder.h"
#include "support/ShellFixture.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QUrlQuery>

/** A page over a loopback documents server, with packages "quillword" in directories of their versions. */
class PackagePage : public ShellFixture
{
protected:
    void SetUp() override
    {
        ShellFixture::SetUp();
        nreadonce::resetForTest();
        runtime.libraryDir = QStringLiteral(SKYLEAF_LIBRARY_DIR);
        for (const char* key : {"quill", "quill_api", "quill_api_spec"})
            services.domains.insert(QLatin1String(key), server.origin());
        services.plugins.insert(QStringLiteral("quillword"), {makePackage("1.0"), {}});
        items.insert(53613, R"({"DOPMasterSwitch": true, "wordDOPSwitch": true})");
        server.answer("/api/v3/office/file", {200, R"({"window.__VLTENV__": {"file_version": "1"}})", {}});
    }

    void install(const char* version)
    {
        NCloudDocsRecordManager::instance()->updatePluginPathRecord(
            QStringLiteral("w"), QLatin1String(version), makePackage(version));
    }

    void answerEnvConfig(const char* version)
    {
        server.answer("/office-config/",
                      {200, QByteArray(R"({"config": {"front_ver": ")") + version + "\"}}", {}});
    }
    void answerVersionCheck(const char* body)
    {
        server.answer("/api/v3/office/prefetch/vcs/", {200, body, {}});
    }

    void begin()
    {
        start();
        configure();
    }

    void configure()
    {
        for (auto item = items.begin(); item != items.end(); ++item)
            host->configCentre().set(60, item.key(), QJsonDocument::fromJson(item.value()).object());
    }

    /** Creates, notifies and loads a page and waits for its browser, which loads from then on. */
    void open(const QVector<const char*>& paths = {"/p/7?officeType=w"})
    {
        page = new NHelioCloudDocsPage(nullptr, true, false);
        window->centralArea()->addPage(page);
        for (const char* path : paths)
            page->notify(server.origin() + QLatin1String(path));
        page->load();
        ASSERT_TRUE(waitUntil([this] { return page->findChild<FakeBrowserWidget*>(); }));
        browser = page->findChild<FakeBrowserWidget*>();
        ASSERT_TRUE(waitUntil([this] { return browser->isCreated(); }));
    }

    bool hasLogged(const QString& text) const { return log.lines().filter(text).size() > 0; }
    bool waitForLog(const QString& text) const
    {
        return waitUntil([&] { return hasLogged(text); });
    }
    QString lastLoaded(const char* item) const
    {
        return browser->loads.isEmpty()
                   ? QString()
                   : QUrlQuery(browser->loads.last()).queryItemValue(QLatin1String(item));
    }
    int steps(const char* step, const char* error) const
    {
        int found = 0;
        for (const auto& event : host->dataCollection().events())
            found += event.fields.value(QStringLiteral("step_name")) == QLatin1String(step) &&
                     event.fields.value(QStringLiteral("error_msg")) == QLatin1String(error);
        return found;
    }

    HttpStub server;
    QMap<int, QByteArray> items;
    LogRecorder log;
    NHelioCloudDocsPage* page = nullptr;
    FakeBrowserWidget* browser = nullptr;
};
