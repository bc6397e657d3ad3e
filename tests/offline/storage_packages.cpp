#include "offline/NDOPStorageInfoHandler.h"

#include "handlers/HandlerFixture.h"
#include "offline/IStorageTransferHost.h"
#include "offline/NDOPStorageHandler.h"

#include <QDir>
#include <QFile>

namespace {

class FakePage final : public QObject, public IStorageTransferHost
{
public:
    void uploadPackage(const QString& url, const QString& info, const QString& path) override
    {
        transfers << QStringList{url, info, path}.join(u'|');
    }
    void downloadPackage(const QString& url, const QString& path) override
    {
        transfers << QStringList{url, path}.join(u'|');
    }

    QStringList transfers;
};

class StoragePackages : public HandlerFixture
{
protected:
    void SetUp() override
    {
        runtime.installRoot = directory.filePath(QStringLiteral("quillfile/L/suite"));
        HandlerFixture::SetUp();
        shell.cloud.user.localDataDir = directory.path();
        QDir().mkpath(root);
        handler = new NDOPStorageInfoHandler(object.get(), object.get(), &page);
        setHandler(handler);
    }

    QByteArray ask(const char* method, const QByteArray& arguments) { return call(method, json(arguments)); }

    const QString root = directory.filePath(QStringLiteral("quillfile/L"));
    FakePage page;
    NDOPStorageInfoHandler* handler = nullptr;
};

TEST_F(StoragePackages, TheServiceAnswersTheCallback)
{
    const TavaIpcResult good{0, {{QStringLiteral("data"), QStringLiteral(R"({"a":"ß"})")}}};
    const QByteArray data = R"(cb {"callstatus":"ok","result":{"a":"ß"}})";
    const struct
    {
        const char* method;
        QByteArray arguments;
        QString call;
        void (NDOPStorageInfoHandler::*answer)(bool, const QString&, const TavaIpcResult&);
        QByteArray ok, operation;
    } cases[] = {
        {"create", R"("fileId":"f")", QStringLiteral("f|onCreate"), &NDOPStorageInfoHandler::onCreate, data,
         "createDOPRootData"},
        {"select", R"("fileId":"f")", QStringLiteral("|f|onSelect"), &NDOPStorageInfoHandler::onSelect, data,
         "getDOPFileInfo"},
        {"update", R"("localId":"L","data":{"t":1})", QStringLiteral("L|{\"t\":1}|docs|receiver"),
         &NDOPStorageInfoHandler::onUpdate, data, "updateDOPFileInfo"},
        {"remove", R"("localId":"L")", QStringLiteral("L|onRemove"), &NDOPStorageInfoHandler::onRemove,
         R"(cb {"callstatus":"ok","result":true})", "removeDOPRootData"},
    };
    for (const auto& each : cases) {
        const auto answered = [&](const QByteArray& callback, bool success, const TavaIpcResult& result) {
            EXPECT_EQ(ask(each.method, "{" + each.arguments + callback + "}"), "") << each.method;
            EXPECT_EQ(shell.cloud.calls.last(), each.call);
            const QString id = QString::number(shell.cloud.calls.size());
            (handler->*each.answer)(success, QStringLiteral("none"), result);
            (handler->*each.answer)(success, id, result);
            (handler->*each.answer)(success, id, result);
            return callbacks();
        };
        const QByteArray named = R"(,"callback":"cb")";
        const QByteArray failure =
            R"(cb {"callstatus":"fail","err":")" + each.operation + R"( error","ipcerrorcode":)";
        EXPECT_EQ(answered(named, true, good), each.ok) << each.method;
        EXPECT_EQ(answered(named, true, {3, {}}), failure + "3}");
        EXPECT_EQ(answered(named, false, good), failure + "0}");
        EXPECT_EQ(answered({}, true, good), "") << each.method;
        ask(each.method, "{" + each.arguments + named + "}");
        container.deliverNextDocument(*object);
        (handler->*each.answer)(true, QString::number(shell.cloud.calls.size()), good);
        EXPECT_EQ(callbacks(), "") << each.method;
    }
}

TEST_F(StoragePackages, TransfersAreCheckedAndAnswerTheLastAcceptedCallback)
{
    const QByteArray upload =
        R"({"localId":"L","serverAddress":"a b","packageInfo":"i","callback":"cb","relativePos":")";
    const QByteArray download =
        R"({"localId":"L","serverAddress":"https://d.test/z","callback":"cb","relativePos":")";
    QFile(root + QStringLiteral("/z")).open(QIODevice::WriteOnly);
    EXPECT_EQ(ask("upload", upload + "z\"}"), "");
    EXPECT_EQ(ask("download", download + "n/z\"}"), "");
    EXPECT_EQ(page.transfers, (QStringList{QStringLiteral("a b|i|%1/z").arg(root),
                                           QStringLiteral("https://d.test/z|%1/n/z").arg(root)}));

    const struct
    {
        const char* method;
        QByteArray arguments;
        QByteArray error;
    } wrong[] = {
        {"upload", R"({"localId":"L","serverAddress":"a","relativePos":"z"})", "params isEmpty"},
        {"upload", QByteArray(upload).replace("\"L\"", "\"..\"") + "z\"}", "localPckRootPath isEmpty"},
        {"upload", upload + "none\"}", "uploadZipFile not exist"},
        {"download", download + "\"}", "params isEmpty"},
        {"download", QByteArray(download).replace("https://d", "https://d:x") + "z\"}",
         "serverAddress is invalid"},
        {"download", QByteArray(download).replace("cb", "other") + "suite/z\"}",
         "relativePos unsafe in installRootDir"},
    };
    for (const auto& each : wrong) {
        EXPECT_EQ(ask(each.method, each.arguments), R"({"callstatus":"error","err":")" + each.error + "\"}")
            << each.method << each.arguments.constData();
    }
    for (const auto& [bytes, result] :
         {std::pair("{}", "true"), {"0", "false"}, {"False", "false"}, {"", "false"}}) {
        const QByteArray answer = QByteArray(R"(cb {"callstatus":"ok","result":)") + result + "}";
        Q_EMIT handler->uploadFinished(bytes);
        EXPECT_EQ(callbacks(), answer) << bytes;
        Q_EMIT handler->downloadFinished(bytes);
        EXPECT_EQ(callbacks(), answer) << bytes;
    }
    EXPECT_EQ(page.transfers.size(), 2);
    container.deliverNextDocument(*object);
    Q_EMIT handler->uploadFinished("1");
    Q_EMIT handler->downloadFinished("1");
    EXPECT_EQ(callbacks(), "");
    handler->setHost(nullptr);
    EXPECT_EQ(ask("download", "{}"), R"({"callstatus":"error","err":"m_host isEmpty"})");
}

TEST_F(StoragePackages, OfflineEditingIsSwitchedByOfficeType)
{
    setItem(60708, R"({"DOPOfflineEditMasterSwitch":true,"wordDOPSwitch":true})");
    auto* storage = new NDOPStorageHandler(object.get(), object.get());
    setHandler(storage);
    EXPECT_EQ(call("funcSwitch"), R"({"callstatus":"ok","result":false})");
    storage->setOfficeType(QStringLiteral("w"));
    EXPECT_EQ(call("funcSwitch"), R"({"callstatus":"ok","result":true})");
}

} // namespace
