#pragma once

#include "nheliostat/NHelioCommonJSAPI.h"
#include "nheliostat/browser/BrowserEnvironment.h"
#include "nheliostat/browser/WebEngineBrowserWidget.h"
#include "zeolite/NxWebViewContainer.h"
#include "zeolite/NxWebViewJSContext.h"

#include <QJsonValue>
#include <QPointer>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <mutex>

class EchoServer;

/** Documents by URL, answered as a local resource handler does. */
class LocalSite
{
public:
    void put(const QString& url, const QByteArray& body);
    NxResourceHandler handler();

private:
    std::mutex m_mutex;
    QMap<QString, QByteArray> m_documents;
};

/** The script object of the tested views. */
class SampleScriptObject final : public NHelioCommonJSAPI
{
    Q_OBJECT
public:
    using NHelioCommonJSAPI::NHelioCommonJSAPI;

    QStringList called;
    std::function<void()> action;
    QList<NxWebViewJSContext> waiting; //!< the calls of `later`, to be published by the test

public Q_SLOTS:
    /** Answers {"length": characters of the argument "text"}. */
    void measure(NxWebViewJSContext& context);
    /** Answers {"text": "size" characters}. */
    void produce(NxWebViewJSContext& context);
    void later(NxWebViewJSContext& context);
    /** Does what the test wants in the middle of a call. */
    void act(NxWebViewJSContext& context);
};

/** Counts what is dropped on it. */
class DropCounter final : public QWidget
{
public:
    int drops = 0;

protected:
    void dropEvent(QDropEvent*) override { ++drops; }
};

/** A shown browser widget whose web view answers "https://docs.skyleaf.test/" and "http://other.test/"
 * locally. */
class BrowserTest : public testing::Test
{
protected:
    static constexpr int patienceMs = 20000;

    BrowserTest();
    ~BrowserTest() override;

    static nheliostat::browser::BrowserEnvironment& environment();
    static EchoServer& echoServer();
    /** Loads and waits for the end of the load; its outcome. */
    bool load(const QString& url);
    /** What the code returns; a failure is a text that begins with "error: ". */
    QJsonValue evaluate(const QString& code, int timeoutMs = patienceMs);
    /** Lets events happen until the condition holds; false when it does not come to hold. */
    static bool waitFor(const std::function<bool()>& condition);

    static QString docs(const char* path);

    LocalSite site;
    DropCounter window;
    nheliostat::browser::WebEngineBrowserWidget* browser;
    QPointer<SampleScriptObject> api;
    QStringList order; //!< signals of the widget's creation
};
