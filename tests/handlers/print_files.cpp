#include "handlers/NPrintFileHandler.h"

#include "handlers/HandlerFixture.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QTimer>

namespace {

QByteArray failed(const QString& message)
{
    return R"({"errorMsg":")" + message.toUtf8() + R"(","resultStatus":"failed"})";
}

class PrintFiles : public HandlerFixture
{
protected:
    void SetUp() override
    {
        HandlerFixture::SetUp();
        shell.cloud.user.cacheRoot = directory.path();
        shell.window = &window;
        handler = new NPrintFileHandler(object.get(), object.get(), page);
        setHandler(handler);
    }

    QByteArray ask(const char* method, const QByteArray& arguments) { return call(method, json(arguments)); }

    FakeMainWindow window;
    QPointer<QWidget> page = new QWidget(&window);
    NPrintFileHandler* handler = nullptr;
};

TEST_F(PrintFiles, TemporaryPathsLieInTheirDirectory)
{
    const QString folder = directory.filePath(QStringLiteral("vltDocsPrintTmp"));
    const QByteArray wrong = failed(QStringLiteral("failed on invalid parameters"));
    for (const char* name : {"", ".", "..", "a/b", "../a", "/a", R"(..\\a)"})
        EXPECT_EQ(ask("getPrintFileTempPath", QByteArray(R"({"filename":")") + name + "\"}"), wrong) << name;
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(json(ask("getPrintFileTempPath", R"({"filename":"a..b.pdf"})"))
                      .value(QStringLiteral("path"))
                      .toString(),
                  folder + QStringLiteral("/a..b.pdf"));
        QFile(folder + QStringLiteral("/a..b.pdf")).open(QIODevice::WriteOnly);
    }
    QDir(folder).mkdir(QStringLiteral("d"));
    EXPECT_EQ(ask("getPrintFileTempPath", R"({"filename":"d"})"),
              R"({"errorMsg":"temp path[)" + folder.toUtf8() +
                  R"(] already exists","resultStatus":"path exists"})");

    shell.cloud.user.cacheRoot = folder + QStringLiteral("/a..b.pdf");
    EXPECT_EQ(ask("getPrintFileTempPath", R"({"filename":"a"})"),
              failed(QStringLiteral("print temp dir not exists")));
    shell.cloud.user.loggedIn = false;
    EXPECT_EQ(ask("getPrintFileTempPath", R"({"filename":"a"})"),
              failed(QStringLiteral("failed on no login")));
    shell.hasCloud = false;
    EXPECT_EQ(ask("getPrintFileTempPath", R"({"filename":"a"})"),
              failed(QStringLiteral("failed on get cache root path")));
}

TEST_F(PrintFiles, TheUserChoosesASavePathUnlessThePageGoes)
{
    const auto answer = [this](auto act) {
        QTimer::singleShot(0, &window, [act] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            act(*dialog);
        });
        return ask("selectPrintFileSavePath", R"({"filename":"a.pdf","caption":"Save it"})");
    };
    const QString chosen = directory.filePath(QStringLiteral("b.pdf"));
    EXPECT_EQ(answer([&chosen](QFileDialog& dialog) {
                  EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Save it"));
                  EXPECT_EQ(dialog.nameFilters(), QStringList(QStringLiteral("*.*")));
                  EXPECT_EQ(QFileInfo(dialog.selectedFiles().value(0)).fileName(), QStringLiteral("a.pdf"));
                  dialog.selectFile(chosen);
                  dialog.setDirectory(QFileInfo(chosen).path());
                  QMetaObject::invokeMethod(&dialog, "accept");
              }),
              R"({"path":")" + chosen.toUtf8() + R"(","resultStatus":"ok"})");
    EXPECT_EQ(answer([](QFileDialog& dialog) { dialog.reject(); }), failed(QStringLiteral("select cancel")));
    EXPECT_EQ(answer([this](QFileDialog&) {
                  delete page;
                  delete handler;
              }),
              failed(QStringLiteral("select cancel")));
}

TEST_F(PrintFiles, SupportIsASwitchOfTheProduct)
{
    EXPECT_EQ(ask("isSupportVltDocsPrint", "{}"), R"({"isShelllessMode":true,"isSupport":true})");
    runtime.productSwitches.insert(QStringLiteral("isSupportVltDocsPrint"), false);
    nrt::host::configure(runtime);
    EXPECT_EQ(ask("isSupportVltDocsPrint", "{}"), R"({"isShelllessMode":true,"isSupport":false})");
}

TEST_F(PrintFiles, TheShellPrintsAndThePageHearsOfIt)
{
    const QString path = directory.filePath(QStringLiteral("f.pdf"));
    const QByteArray arguments = R"({"fileId":"1","fileAbsolutePath":")" + path.toUtf8() + "\"}";
    EXPECT_EQ(ask("printFileByZeo", R"({"fileId":"1"})"),
              failed(QStringLiteral("failed on invalid parameters")));
    EXPECT_EQ(ask("printFileByZeo", arguments), failed(QStringLiteral("localPath[%1] not exists").arg(path)));
    EXPECT_TRUE(shell.cloud.calls.isEmpty());
    QFile(path).open(QIODevice::WriteOnly);
    EXPECT_EQ(ask("printFileByZeo", arguments), R"({"resultStatus":"ok"})");
    EXPECT_EQ(shell.cloud.calls, QStringList(path + QStringLiteral("|1")));
    shell.cloud.deliverPrinted({{QStringLiteral("n"), 1}});
    const auto& events = container.transport.events;
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].name + events[0].text, QStringLiteral(R"(notifyPrintResult{"n":1})"));

    ask("printFileByZeo", arguments);
    container.deliverNextDocument(*object);
    shell.cloud.deliverPrinted({});
    EXPECT_EQ(events.size(), 1U) << "the document that asked is gone";

    shell.window = nullptr;
    EXPECT_EQ(ask("printFileByZeo", "{}"), failed(QStringLiteral("find Relative HelioMainWindow fail")));
    shell.hasCloud = false;
    EXPECT_EQ(ask("printFileByZeo", "{}"), failed(QStringLiteral("helio app point null")));
    object.reset();
    shell.cloud.deliverPrinted({});
    EXPECT_EQ(events.size(), 1U);
}

} // namespace
